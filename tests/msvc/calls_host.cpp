// Calls every function that works on images, once or twice, and prints one line for each.
#include "call_forms.h"

namespace {

using namespace host;

#define CALL(name) Run(#name, name)
#define CALL_AS(name, parameters) Run(#name, static_cast<void(*) parameters>(name))

// Values go in and come out one by one.
void ValueCalls() {
    Frame& f = Images();
    {
        Line line("IPL_PixelRatio");
        const int ratio = IPL_PixelRatio(TQ_COLOR_UYVY);
        line.Add(&ratio, sizeof ratio);
    }
    {
        Line line("IPL_PixelRatio");
        const int ratio = IPL_PixelRatio(0x20000000ul);
        line.Add(&ratio, sizeof ratio);
    }
    {
        Line line("IPL_PixelRatioEx");
        TQ_COLOR_FORMAT format = TQ_COLOR_ARGB;
        const int ratio = IPL_PixelRatioEx(format);
        line.Add(&ratio, sizeof ratio);
    }
    {
        Line line("IPL_PixelRatioEx");
        unsigned long format = 64;
        const int ratio = IPL_PixelRatioEx(format);
        line.Add(&ratio, sizeof ratio);
    }
    {
        Line line("IPL_RGB2HSV_32f_32f");
        float hsv[3] = {};
        IPL_RGB2HSV_32f_32f(12.5f, 200.25f, 99.0f, hsv[0], hsv[1], hsv[2]);
        line.Add(hsv, sizeof hsv);
    }
    {
        Line line("IPL_RGB2HSV_8u_32f");
        float hsv[3] = {};
        IPL_RGB2HSV_8u_32f(201, 12, 99, hsv[0], hsv[1], hsv[2]);
        line.Add(hsv, sizeof hsv);
    }
    {
        Line line("IPL_HSV2RGB_32f_8u");
        Byte rgb[3] = {};
        IPL_HSV2RGB_32f_8u(205.5f, 0.75f, 0.5f, rgb[0], rgb[1], rgb[2]);
        line.Add(rgb, sizeof rgb);
    }
    {
        Line line("IPL_GetPSNR_8u_C1R");
        const float psnr =
            IPL_GetPSNR_8u_C1R(kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[1]);
        line.Add(&psnr, sizeof psnr);
    }
    {
        Line line("IPL_GetPSNR_YUYV");
        float psnr[3] = {};
        IPL_GetPSNR_YUYV(kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[1], psnr[0],
                         psnr[1], psnr[2]);
        line.Add(psnr, sizeof psnr);
    }
}

// What these leave in part of an image is what a buffer happened to hold.
void PartlyDefinedCalls() {
    Frame& f = Images();
    {
        Line line("IPL_BilteralExMutiThread_8u_C1R");
        IPL_BilteralExMutiThread_8u_C1R(kWidth, kHeight, kStride, f.bytes[0], kStride, f.bytes[1],
                                        2, 30);
        line.OnlyInside(1, 0, kHeight - 4);
    }
    {
        Line line("IPL_BilteralExMutiThread_8u_C1R");
        IPL_BilteralExMutiThread_8u_C1R(kWidth, kHeight, kStride, f.bytes[0], 3, 20);
        line.OnlyInside(0, 0, kHeight - 6);
    }
    {
        Line line("IPL_Average_8u_C1R");
        IPL_Average_8u_C1R(kWidth, kHeight, kStride, f.bytes[0], 2);
        line.OnlyInside(0, 3, kHeight - 1);
    }
    {
        Line line("IPL_Median_8u_C1R");
        IPL_Median_8u_C1R(kWidth, kHeight, kStride, f.bytes[0], 2);
        line.OnlyInside(0, 3, kHeight - 1);
    }
}

// Buffers of the library's own, and the end of them.
void BufferCalls() {
    const int size = 3000000;
    {
        Line line("IPL_Malloc");
        Byte* dirty = IPL_Malloc(size);
        for (int i = 0; i < size; i += 100) dirty[i] = static_cast<Byte>(i / 100);
        line.Add(dirty + 1000, 1);
        IPL_Free(dirty);
    }
    {
        Line line("IPL_Malloc");
        Byte* clean = IPL_Malloc(size, 1);
        line.Add(clean, 200000);
        Line("IPL_Free").Add(clean, 1);
        IPL_Free(clean);
    }
    {
        void* manager = IPL_GetMemoryManager();
        const bool made = manager != nullptr;
        Line("IPL_GetMemoryManager").Add(&made, sizeof made);
        IPL_DeletMemoryManager(manager);
        Line("IPL_DeletMemoryManager").Add(&made, sizeof made);
    }
}

void MemoryCalls() {
    CALL_AS(IPL_Memcpy, (Byte*, Byte*, int));
    CALL(IPL_Memcpy_C1R);
    CALL(IPL_Memcpy_C1R_16u);
    CALL(IPL_Memcpy_C4R);
    CALL(IPL_MemcpyMultiThread_C1R);
    CALL(IPL_MemcpyMultiThread_C1R_16u);
    CALL(IPL_MemcpyMultiThread_C4R);
    CALL(IPL_MemcpyInvert_CR1);
    CALL(IPL_MemcpyInvert_CR4);
    CALL_AS(IPL_Memcpy, (TQ_COLOR_FORMAT, int, int, int, Byte*, int, Byte*));
    CALL(IPL_MemcpyMultiThread);
    CALL(IPL_MemcpyInvert);
    CALL_AS(IPL_MemcpyIn, (TQ_COLOR_FORMAT, int, int, int, Byte*, int, Byte*, TQ_RECT, int));
    CALL_AS(IPL_MemcpyIn, (int, int, int, Byte*, int, Byte*, TQ_RECT, int));
    CALL_AS(IPL_MemcpyOut, (TQ_COLOR_FORMAT, int, int, int, Byte*, int, Byte*, TQ_RECT, int));
    CALL_AS(IPL_MemcpyOut, (int, int, int, Byte*, int, Byte*, TQ_RECT, int));
    CALL_AS(IPL_ZeroMemory, (Byte*, int));
    CALL(IPL_ZeroMemory_C1R);
    CALL(IPL_ZeroMemory_C4R);
    CALL_AS(IPL_ZeroMemory, (TQ_COLOR_FORMAT, Byte*, int));
    CALL_AS(IPL_ZeroMemory, (TQ_COLOR_FORMAT, int, int, int, Byte*));
    CALL(IPL_BlackMemory);
    CALL(IPL_ZeroMemoryIn);
    CALL(IPL_ZeroMemoryOut);
    CALL(IPL_BlackMemoryIn);
    CALL(IPL_BlackMemoryOut);
    CALL(IPL_FillMemory_C1R);
    CALL(IPL_FillMemory_C4R);
    CALL(IPL_FillMemoryIn_C1R);
    CALL(IPL_FillMemoryOut_C1R);
    CALL(IPL_FillMemoryIn_C4R);
    CALL(IPL_FillMemoryOut_C4R);
    CALL(IPL_InvertImage_C1R);
    CALL(IPL_InvertImage_C4R);
    CALL(IPL_MemcpyAndPad_C1R);
    CALL(IPL_MemcpyAndPadMultiThread_C1R);
}

void ZoomCalls() {
    CALL(IPL_ZoomNN_8u_C1R);
    CALL(IPL_ZoomNN_8u_C4R);
    CALL(IPL_ZoomLinear_8u_C1R);
    CALL(IPL_ZoomLinearMultiThread_8u_C1R);
    CALL(IPL_ZoomLinear_8u_C4R);
    CALL(IPL_ZoomLinearMultiThread_8u_C4R);
    CALL(IPL_ZoomLinearCorrect_8u_C1R);
    CALL(IPL_ZoomLinearCorrectMultiThread_8u_C1R);
    CALL(IPL_ZoomLinearCorrect_8u_C4R);
    CALL(IPL_ZoomLinearCorrectMultiThread_8u_C4R);
    CALL(IPL_ZoomCubic_8u_C1R);
    CALL(IPL_ZoomCubicMultiThread_8u_C1R);
    CALL(IPL_ZoomCubic_8u_C4R);
    CALL(IPL_ZoomCubicMultiThread_8u_C4R);
    CALL(IPL_Zoom6Cubic_8u_C1R);
    CALL(IPL_Zoom6CubicMultiThread_8u_C1R);
    CALL(IPL_Zoom6Cubic_8u_C4R);
    CALL(IPL_Zoom6CubicMultiThread_8u_C4R);
    CALL(IPL_ZoomCubicCorrect_8u_C1R);
    CALL(IPL_ZoomCubicCorrectMultiThread_8u_C1R);
    CALL(IPL_ZoomCubicCorrect_8u_C4R);
    CALL(IPL_ZoomCubicCorrectMultiThread_8u_C4R);
    CALL(IPL_ZoomSuper_8u_C1R);
    CALL(IPL_ZoomSuperMultiThread_8u_C1R);
    CALL(IPL_ZoomSuper_8u_C4R);
    CALL(IPL_ZoomSuperMultiThread_8u_C4R);
    CALL(IPL_ZoomJBI_8u_C1R);
    CALL(IPL_ZoomJBIMultiThread_8u_C1R);
    CALL(IPL_ZoomJBI_8u_C4R);
    CALL(IPL_ZoomJBIMultiThread_8u_C4R);
    CALL(IPL_ZoomTFI_8u_C1R);
    CALL(IPL_ZoomTFIMultiThread_8u_C1R);
    CALL(IPL_ZoomTFI_8u_C4R);
    CALL(IPL_ZoomTFIMultiThread_8u_C4R);
}

void MorphCalls() {
    CALL(IPL_FCCLabeling);
    CALL(IPL_FCCLabeling2);
    CALL(IPL_FCCLabeling_MultiThread);
    CALL(IPL_FCCLabelingEx);
    CALL(IPL_FCCLabelingDeNoise);
    CALL(IPL_FCCLabelingDeNoiseEx);
    CALL(IPL_FCCLabelingDeNoiseEx_MultiThread);
    CALL(IPL_FCCLabelingDeNoiseEx2);
    CALL(IPL_FCCLabelingDeNoiseEx2_MultiThread);
    CALL(IPL_FCCDeNoiseAndGrowth);
    CALL(IPL_FCCDeNoiseAndGrowth2);
    CALL(IPL_FCCDeNoiseAndGrowth2_MultiThread);
    CALL(IPL_Erosion);
    CALL(IPL_Erosion_MultiThread);
    CALL(IPL_Dilation);
    CALL(IPL_Dilation_MultiThread);
    CALL(IPL_Opening);
    CALL(IPL_Opening_MultiThread);
    CALL(IPL_Closing);
    CALL(IPL_Closing_MultiThread);
    CALL(IPL_DeNoise);
    CALL(IPL_DeNoise_MultiThread);
    CALL(IPL_FErosion);
    CALL_AS(IPL_FErosion_MultiThread, (int, int, int, Byte*, int, int));
    CALL_AS(IPL_FErosion_MultiThread, (int, int, int, Byte*, int, Byte*, int, int));
    CALL(IPL_FDilation);
    CALL_AS(IPL_FDilation_MultiThread, (int, int, int, Byte*, int, int));
    CALL_AS(IPL_FDilation_MultiThread, (int, int, int, Byte*, int, Byte*, int, int));
    CALL(IPL_FOpening);
    CALL_AS(IPL_FOpening_MultiThread, (int, int, int, Byte*, int, int, int, int));
    CALL_AS(IPL_FOpening_MultiThread, (int, int, int, Byte*, int, Byte*, int, int, int, int));
    CALL(IPL_FClosing);
    CALL_AS(IPL_FClosing_MultiThread, (int, int, int, Byte*, int, int, int, int));
    CALL_AS(IPL_FClosing_MultiThread, (int, int, int, Byte*, int, Byte*, int, int, int, int));
    CALL(IPL_FDeNoise);
    CALL(IPL_FDeNoise_MultiThread);
}

void FilterCalls() {
    CALL_AS(IPL_Bilteral_8u_C1R, (int, int, int, Byte*, int, Byte*, int, int));
    CALL_AS(IPL_Bilteral_8u_C1R, (int, int, int, Byte*, int, int));
    CALL_AS(IPL_BilteralEx_8u_C1R, (int, int, int, Byte*, int, Byte*, int, int));
    CALL_AS(IPL_BilteralEx_8u_C1R, (int, int, int, Byte*, int, int));
    CALL_AS(IPL_Gauss3x3_8u_C1R, (int, int, int, Byte*, int, Byte*));
    CALL_AS(IPL_Gauss3x3_8u_C1R, (int, int, int, Byte*));
    CALL_AS(IPL_Gauss_8u_C1R, (int, int, int, Byte*, int, Byte*, int));
    CALL_AS(IPL_Gauss_8u_C1R, (int, int, int, Byte*, int));
    CALL_AS(IPL_Average_8u_C1R, (int, int, int, Byte*, int, Byte*, int));
    CALL_AS(IPL_Median_8u_C1R, (int, int, int, Byte*, int, Byte*, int));
    CALL(IPL_Median3x3_8u_C1R);
    CALL(IPL_Deinterlace_8u_C1R);
    CALL(IPL_FwdWavelet_53_C1);
    CALL(IPL_InvWavelet_53_C1);
    CALL(IPL_WaveletFilter_53_C1);
    CALL(IPL_Wavelet_BSpline_C1);
    CALL(IPL_WaveletLL_53_C1);
    CALL(IPL_WaveletLL_53_C1_MultiThread);
    CALL(IPL_WaveletLL_53_C1_16u);
    CALL(IPL_WaveletLL_53_C1_16u_MultiThread);
    CALL(IPL_P2I_Wavelet53_C1R);
    CALL(IPL_P2I_Wavelet53_MultiThread_C1R);
    CALL(IPL_P2I_Wavelet53_C1R_16u);
    CALL(IPL_P2I_Wavelet53_MultiThread_C1R_16u);
    CALL(IPL_P2I_Wavelet53_C4R);
    CALL(IPL_P2I_Wavelet53_MultiThread_C4R);
    CALL(IPL_P2I_Wavelet53_C3R_16u);
    CALL(IPL_P2I_Wavelet53_MultiThread_C3R_16u);
}

void PlanesCalls() {
    CALL(IPL_SplitColor);
    CALL(IPL_SplitColorMultiThread);
    CALL(IPL_BuildColor);
    CALL(IPL_BuildColorMultiThread);
    CALL_AS(IPL_YUV601x709, (TQ_COLOR_FORMAT, int, int, int, Byte*));
    CALL(IPL_YUV601x709MultiThread);
    CALL_AS(IPL_YUV709x601, (TQ_COLOR_FORMAT, int, int, int, Byte*));
    CALL(IPL_YUV709x601MultiThread);
    CALL(IPL_YUV2020x709);
    CALL(IPL_YUV2020x709MultiThread);
    CALL(IPL_YUV709x2020);
    CALL(IPL_YUV709x2020MultiThread);
    CALL_AS(IPL_YUV601x709, (int, int, TQ_COLOR_FORMAT, int, Byte*, TQ_COLOR_FORMAT, int, Byte*));
    CALL_AS(IPL_YUV709x601, (int, int, TQ_COLOR_FORMAT, int, Byte*, TQ_COLOR_FORMAT, int, Byte*));
    CALL(IPL_YUVP_422_601x709);
    CALL(IPL_YUVP_422_601x709MultiThread);
    CALL(IPL_YUVP_422_709x601);
    CALL(IPL_YUVP_422_709x601MultiThread);
    CALL(IPL_YUVP_422_2020x709);
    CALL(IPL_YUVP_422_2020x709MultiThread);
    CALL(IPL_YUVP_422_709x2020);
    CALL(IPL_YUVP_422_709x2020MultiThread);
}

void DeepCalls() {
    CALL(IPL_V210_To_UYVY);
    CALL(IPL_V210_To_YUYV);
    CALL(IPL_V210_To_YUVP422);
    CALL(IPL_V210_To_BGRA_601);
    CALL(IPL_V210_To_BGRA_601MultiThread);
    CALL(IPL_V210_To_BGRA_709);
    CALL(IPL_V210_To_BGRA_709MultiThread);
    CALL(IPL_V210_To_YUVP216);
    CALL(IPL_V210_To_YUVP216MultiThread);
    CALL(IPL_YUVP216_To_V210);
    CALL(IPL_YUVP216_To_V210MultiThread);
    CALL(IPL_V210_To_Lum32);
    CALL(IPL_V210_To_Lum32MultiThread);
    CALL(IPL_V216_To_BGRA_601);
    CALL(IPL_V216_To_BGRA_601MultiThread);
    CALL(IPL_V216_To_BGRA_709);
    CALL(IPL_V216_To_BGRA_709MultiThread);
    CALL(IPL_V216_To_YUVP216);
    CALL(IPL_V216_To_YUVP216MultiThread);
    CALL(IPL_YUVP216_To_V216);
    CALL(IPL_YUVP216_To_V216MultiThread);
    CALL(IPL_V216_To_Lum32);
    CALL(IPL_V216_To_Lum32MultiThread);
    CALL(IPL_BGRTQ10b_To_BGRA);
    CALL(IPL_BGRTQ10b_To_BGRAMultiThread);
    CALL(IPL_BGRTQ10b_To_BGRTQ16b);
    CALL(IPL_BGRTQ10b_To_BGRTQ16bMultiThread);
    CALL(IPL_BGRTQ16b_To_BGRA);
    CALL(IPL_BGRTQ16b_To_BGRAMultiThread);
    CALL(IPL_BGRTQ16b_To_BGRTQ10b);
    CALL(IPL_BGRTQ16b_To_BGRTQ10bMultiThread);
    CALL(IPL_BGR10b_To_BGRA16b);
    CALL(IPL_BGR10b_To_BGRA16bMultiThread);
    CALL(IPL_BGR16b_To_BGRA16b);
    CALL(IPL_BGR16b_To_BGRA16bMultiThread);
    CALL(IPL_BGRA16b_To_BGR10b);
    CALL(IPL_BGRA16b_To_BGR10bMultiThread);
    CALL(IPL_BGRA16b_To_BGR16b);
    CALL(IPL_BGRA16b_To_BGR16bMultiThread);
    CALL(IPL_BGR10b_To_Lum);
    CALL(IPL_BGR10b_To_Lum_MultiThread);
    CALL(IPL_BGR16b_To_Lum);
    CALL(IPL_BGR16b_To_Lum_MultiThread);
    CALL(IPL_BGR10b_To_Lum32);
    CALL(IPL_BGR10b_To_Lum32_MultiThread);
    CALL(IPL_BGR16b_To_Lum32);
    CALL(IPL_BGR16b_To_Lum32_MultiThread);
}

void HsvCalls() {
    CALL(IPL_BGRA2HSV);
    CALL(IPL_BGRA2HSV_MultiThread);
    CALL_AS(IPL_HSV2BGRA,
            (int, int, int, float*, int, float*, int, float*, int, float*, int, Byte*));
    CALL_AS(IPL_HSV2BGRA_MultiThread,
            (int, int, int, float*, int, float*, int, float*, int, float*, int, Byte*));
    CALL_AS(IPL_HSV2BGRA, (int, int, int, float*, int, float*, int, float*, int, Byte*));
    CALL_AS(IPL_HSV2BGRA_MultiThread,
            (int, int, int, float*, int, float*, int, float*, int, Byte*));
    CALL(IPL_HSV_To_BGRA);
    CALL(IPL_YUYV2HSV_601);
    CALL(IPL_YUYV2HSV_601_MultiThread);
    CALL(IPL_YUYV2HSV_709);
    CALL(IPL_YUYV2HSV_709_MultiThread);
    CALL(IPL_YUYV2HSVP_601);
    CALL(IPL_YUYV2HSVP_601_MultiThread);
    CALL(IPL_YUYV2HSVP_709);
    CALL(IPL_YUYV2HSVP_709_MultiThread);
    CALL(IPL_HSV2YUYV_601);
    CALL(IPL_HSV2YUYV_601_MultiThread);
    CALL(IPL_HSV2YUYV_709);
    CALL(IPL_HSV2YUYV_709_MultiThread);
    CALL(IPL_HSVP2YUYV_601);
    CALL(IPL_HSVP2YUYV_601_MultiThread);
    CALL(IPL_HSVP2YUYV_709);
    CALL(IPL_HSVP2YUYV_709_MultiThread);
    CALL(IPL_BGRA2HSV_8u_C3R);
    CALL(IPL_BGRA2HSV_8u_C3R_MultiThread);
    CALL(IPL_HSV2BGRA_8u_C3R);
    CALL(IPL_HSV2BGRA_8u_C3R_MultiThread);
    CALL(IPL_YUYV2HSV_8u_709);
    CALL(IPL_YUYV2HSV_8u_709_MultiThread);
    CALL(IPL_HSV2YUYV_8u_709);
    CALL(IPL_HSV2YUYV_8u_709_MultiThread);
    CALL(IPL_UYVY2HSV_8u);
    CALL(IPL_UYVY2HSV_8u_MultiThread);
    CALL(IPL_HSV2UYVY_8u);
    CALL(IPL_HSV2UYVY_8u_MultiThread);
}

void ColorCalls() {
    CALL(IPL_YUYV422_To_ARGB444);
    CALL(IPL_YUYV422_To_ARGB444_MultiThread);
    CALL(IPL_UYVY422_To_ARGB444);
    CALL(IPL_UYVY422_To_ARGB444_MultiThread);
    CALL(IPL_VUYT444_To_ARGB444);
    CALL(IPL_VUYT444_To_ARGB444_MultiThread);
    CALL(IPL_YUYV2ARGB_601);
    CALL(IPL_YUYV2ARGB_601_MultiThread);
    CALL(IPL_UYVY2ARGB_601);
    CALL(IPL_UYVY2ARGB_601_MultiThread);
    CALL(IPL_YUYV2ARGB_709);
    CALL(IPL_YUYV2ARGB_709_MultiThread);
    CALL(IPL_UYVY2ARGB_709);
    CALL(IPL_UYVY2ARGB_709_MultiThread);
    CALL(IPL_ARGB2YUYV_601);
    CALL(IPL_ARGB2YUYV_601_MultiThread);
    CALL(IPL_ARGB2YUYV_709);
    CALL(IPL_ARGB2YUYV_709_MultiThread);
    CALL(IPL_ARGB2UYVY_601);
    CALL(IPL_ARGB2UYVY_601_MultiThread);
    CALL(IPL_ARGB2UYVY_709);
    CALL(IPL_ARGB2UYVY_709_MultiThread);
    CALL(IPL_YUVP_422_To_ARGB444);
    CALL(IPL_YUVP_422_To_ARGB444_MultiThread);
    CALL(IPL_YUVP422_To_ARGB_601);
    CALL(IPL_YUVP422_To_ARGB_601_MultiThread);
    CALL(IPL_YUVP422_To_ARGB_709);
    CALL(IPL_YUVP422_To_ARGB_709_MultiThread);
    CALL(IPL_ARGB_To_YUVP422_601);
    CALL(IPL_ARGB_To_YUVP422_601_MultiThread);
    CALL(IPL_ARGB_To_YUVP422_709);
    CALL(IPL_ARGB_To_YUVP422_709_MultiThread);
    CALL(IPL_YUYV_To_YMultiThread);
    CALL(IPL_UYVY_To_YMultiThread);
    CALL(IPL_RGB2BGRA);
    CALL(IPL_RGB2BGRA_MultiThread);
    CALL(IPL_BGRA2RGB);
    CALL(IPL_BGRA2RGB_MultiThread);
    CALL(IPL_ARGB2LUM);
    CALL(IPL_ARGB2LUM_MultiThread);
    CALL(IPL_BGRA_To_Lum32);
    CALL(IPL_BGRA_To_Lum32_MultiThread);
}

}  // namespace

int HostMain() {
    ValueCalls();
    PartlyDefinedCalls();
    BufferCalls();
    MemoryCalls();
    ZoomCalls();
    MorphCalls();
    FilterCalls();
    PlanesCalls();
    DeepCalls();
    HsvCalls();
    ColorCalls();
    return 0;
}
