// tqipl demo: the library's routines on photographs, as PNG files and one contact sheet.

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <system_error>

#include "commands.h"
#include "demo/progress.h"
#include "demo/sections.h"
#include "demo/sheet.h"
#include "demo/view.h"
#include "file_access.h"
#include "host_error.h"
#include "machine.h"
#include "png_file.h"
#include "text.h"

namespace tqipl {

namespace {

namespace fs = std::filesystem;

fs::path SamplesFolder(const std::string& wanted) {
    if (!wanted.empty()) return wanted;
    std::error_code ignored;
    const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
    const fs::path shared = (program.parent_path() / TQIPL_SAMPLES).lexically_normal();
    return !program.empty() && fs::is_directory(shared, ignored) ? shared : "samples";
}

std::vector<fs::path> FindPhotographs(const fs::path& folder) {
    std::error_code error;
    std::vector<fs::path> files;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().extension() == ".png") files.push_back(entry->path());
    if (error)
        throw HostError("cannot read the samples folder " + folder.string() + ": " +
                        error.message());
    if (files.empty()) throw HostError("no PNG files in the samples folder " + folder.string());
    std::sort(files.begin(), files.end());
    return files;
}

Sample ReadSample(const fs::path& file) {
    Sample sample;
    sample.name = file.stem().string();
    sample.decodeMs = TimeOf([&] { sample.picture = ReadPng(file); });
    sample.colour = ToColour(sample.picture);
    return sample;
}

// The exhibits of a photograph, by section.
using Programme = std::vector<std::vector<Exhibit>>;

Programme MakeProgramme(const Sample& sample) {
    Programme programme;
    for (const Section& section : Sections()) programme.push_back(section.exhibits(sample));
    return programme;
}

std::string Summary(const std::string& fileName, const Timing& timing) {
    if (timing.byHost) return fileName + ": " + Milliseconds(timing.plainMs) + " by the host";
    if (timing.onlyMultiThread)
        return fileName + ": MultiThread " + Milliseconds(timing.plainMs) + ", no plain form";
    const std::string plain = fileName + ": plain " + Milliseconds(timing.plainMs);
    if (!timing.multiThreadMs) return plain;
    const std::string both = plain + ", MultiThread " + Milliseconds(*timing.multiThreadMs);
    if (timing.notCompared != nullptr) return both + ", other bytes: " + timing.notCompared;
    return both + (timing.sameBytes ? ", same bytes" : ", DIFFERENT BYTES");
}

std::string FileName(const Sample& sample, const Exhibit& exhibit) {
    return sample.name + "-" + exhibit.id + ".png";
}

void ShowExhibit(const Sample& sample, const Exhibit& exhibit, const fs::path& folder,
                 Progress& progress, Sheet& sheet) {
    const std::string fileName = FileName(sample, exhibit);
    progress.Begin(fileName);
    const Shown shown = exhibit.make();
    WritePng(folder / fileName, shown.picture);
    const Picture view = MakeView(shown.picture, exhibit.view);
    sheet.Add(exhibit, shown, fileName, EncodePng(view), view.size);
    progress.End(Summary(fileName, shown.timing));
}

void WriteViews(const std::vector<Sample>& samples, const std::vector<Programme>& programmes,
                const DemoOptions& options) {
    std::map<std::string, const Exhibit*> known;
    for (size_t i = 0; i < samples.size(); ++i)
        for (const std::vector<Exhibit>& exhibits : programmes[i])
            for (const Exhibit& exhibit : exhibits) known[FileName(samples[i], exhibit)] = &exhibit;
    for (const std::string& name : options.pictures)
        if (!known.contains(name)) throw HostError("the demo has no picture " + name);

    Progress progress(options.pictures.size());
    for (const std::string& name : options.pictures) {
        progress.Begin(name);
        const Exhibit& exhibit = *known[name];
        const Shown shown = exhibit.make();
        if (!shown.timing.sameBytes && shown.timing.notCompared == nullptr)
            throw HostError("plain and MultiThread forms gave different bytes in " + name);
        WritePng(fs::path(options.folder) / name, MakeView(shown.picture, exhibit.view));
        progress.End(Summary(name, shown.timing));
    }
}

}  // namespace

void RunDemo(const DemoOptions& options) {
    std::vector<Sample> samples;
    for (const fs::path& file : FindPhotographs(SamplesFolder(options.samples)))
        samples.push_back(ReadSample(file));
    const fs::path folder = options.folder;
    MakeFolder(folder);

    std::vector<Programme> programmes;
    size_t pictures = 0;
    for (const Sample& sample : samples) {
        programmes.push_back(MakeProgramme(sample));
        for (const std::vector<Exhibit>& exhibits : programmes.back()) pictures += exhibits.size();
    }
    if (!options.pictures.empty()) return WriteViews(samples, programmes, options);
    std::cout << Count(samples.size(), "photograph", "photographs") << ", "
              << Count(pictures, "picture", "pictures") << ", " << MachineSummary() << std::endl;

    Sheet sheet;
    {
        Progress progress(pictures);
        for (size_t i = 0; i < samples.size(); ++i) {
            sheet.BeginPhotograph(samples[i].name, samples[i].picture.size);
            for (size_t s = 0; s < Sections().size(); ++s) {
                const std::vector<Exhibit>& exhibits = programmes[i][s];
                if (exhibits.empty()) continue;
                sheet.BeginSection(Sections()[s].title, Sections()[s].introduction);
                for (const Exhibit& exhibit : exhibits)
                    ShowExhibit(samples[i], exhibit, folder, progress, sheet);
            }
        }
    }

    const std::string page = sheet.Finish();
    WriteWhole(folder / "index.html", {reinterpret_cast<const uint8_t*>(page.data()), page.size()});
    if (sheet.Different() > 0)
        throw HostError("plain and MultiThread forms gave different bytes in " +
                        std::to_string(sheet.Different()) + " of " +
                        std::to_string(sheet.Compared()) + " comparisons; see " +
                        (folder / "index.html").string());
    std::cout << "Plain and MultiThread forms gave the same bytes in all " << sheet.Compared()
              << " comparisons.\n"
              << "Contact sheet: " << (folder / "index.html").string() << "\n";
}

}  // namespace tqipl
