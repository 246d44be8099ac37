// The sheet's style sheet and script.

#include "demo/sheet_style.h"

namespace tqipl {

// The grounds are neutral greys, so that they do not colour the judgement of the photographs.
const char* const kSheetStyle = R"css(
:root {
  color-scheme: light dark;
  --ground: #f3f3f2; --card: #ffffff; --text: #1c1d1f; --faint: #5d6166; --line: #dcdcda;
  --plain: #a3a7ad; --multi: #1f7a68; --good: #1f6b4f; --bad: #b3261e; --check: #e4e4e4;
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #151617; --card: #1e2022; --text: #e8e8e6; --faint: #a0a4a9; --line: #33363a;
    --plain: #6d737a; --multi: #45b39c; --good: #6fcfa4; --bad: #ff8a80; --check: #2b2d30;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0; background: var(--ground); color: var(--text);
  font: 15px/1.5 system-ui, -apple-system, "Segoe UI", Roboto, "DejaVu Sans", sans-serif;
}
header, main, footer { max-width: 1480px; margin: 0 auto; padding: 0 clamp(16px, 3vw, 40px); }
header { padding-top: 40px; padding-bottom: 16px; }
h1 { margin: 0; font-size: clamp(26px, 4vw, 38px); line-height: 1.15; letter-spacing: -0.02em; }
.lede { margin: 8px 0 24px; max-width: 68ch; color: var(--faint); font-size: 17px; }
.facts { display: flex; flex-wrap: wrap; gap: 12px 40px; margin: 0 0 20px; }
.facts dt { font-size: 12px; color: var(--faint); }
.facts dd { margin: 0; font-size: 19px; font-weight: 600; }
.total { margin: 0; padding: 12px 16px; border-left: 4px solid; background: var(--card); }
.same { color: var(--good); }
.different { color: var(--bad); font-weight: 600; }
nav {
  position: sticky; top: 0; z-index: 1; background: var(--ground);
  border-bottom: 1px solid var(--line);
}
nav ul {
  display: flex; gap: 24px; max-width: 1480px; margin: 0 auto; overflow-x: auto;
  padding: 12px clamp(16px, 3vw, 40px); list-style: none;
}
nav a { color: inherit; text-decoration: none; white-space: nowrap; }
nav a:hover { text-decoration: underline; }
.photograph { padding-top: 40px; scroll-margin-top: 24px; }
h2 { margin: 0; font-size: 25px; letter-spacing: -0.01em; overflow-wrap: anywhere; }
h2 small { margin-left: 8px; font-size: 15px; font-weight: 400; color: var(--faint); }
h3 { margin: 32px 0 0; font-size: 18px; }
.introduction { margin: 2px 0 14px; max-width: 76ch; color: var(--faint); }
.grid {
  display: grid; gap: 20px;
  grid-template-columns: repeat(auto-fill, minmax(min(322px, 100%), 1fr));
}
figure {
  display: flex; flex-direction: column; margin: 0; overflow: hidden;
  background: var(--card); border: 1px solid var(--line); border-radius: 6px;
}
.view {
  display: block; width: 100%; padding: 0; border: 0; cursor: zoom-in;
  background: repeating-conic-gradient(var(--check) 0 25%, transparent 0 50%) 0 0 / 20px 20px;
}
.view:focus-visible { outline: 3px solid var(--multi); outline-offset: -3px; }
.view img { display: block; width: 100%; height: auto; }
.view.detail { background: var(--ground); }
.view.detail img { width: auto; max-width: 100%; margin: 0 auto; }
figcaption { display: flex; flex-direction: column; flex: 1; gap: 8px; padding: 12px 14px 14px; }
figcaption p { margin: 0; }
h4 { margin: 0; font-size: 16px; line-height: 1.3; }
code, .file { font-size: 12px; color: var(--faint); overflow-wrap: anywhere; }
code { font-family: ui-monospace, "SF Mono", Consolas, "DejaVu Sans Mono", monospace; }
.times {
  display: grid; gap: 4px 10px; grid-template-columns: auto 1fr auto; align-items: center;
  margin-top: auto; padding-top: 4px; font-size: 13px;
}
.times b { font-weight: 600; text-align: right; font-variant-numeric: tabular-nums; }
.bar { height: 8px; border-radius: 2px; background: var(--plain); }
.bar.multi { background: var(--multi); }
.last {
  display: flex; flex-wrap: wrap; justify-content: space-between; gap: 2px 12px;
  font-size: 13px;
}
footer { padding-top: 40px; padding-bottom: 48px; color: var(--faint); font-size: 13px; }
dialog {
  max-width: 96vw; max-height: 96vh; padding: 0; border: 0; overflow: auto;
  background: var(--card); cursor: zoom-out;
}
dialog::backdrop { background: rgb(0 0 0 / 0.8); }
dialog img { display: block; }
dialog img.pixels { image-rendering: pixelated; }
@media print { nav { display: none; } figure { break-inside: avoid; } }
)css";

const char* const kSheetScript = R"js(
const large = document.getElementById("large");
for (const button of document.querySelectorAll(".view")) {
  button.addEventListener("click", () => {
    const picture = button.firstElementChild.cloneNode();
    const detail = button.classList.contains("detail");
    picture.classList.toggle("pixels", detail);
    if (detail) {
      picture.width *= 3;
      picture.height *= 3;
    }
    large.replaceChildren(picture);
    large.showModal();
  });
}
large.addEventListener("click", () => large.close());
)js";

}  // namespace tqipl
