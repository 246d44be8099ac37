#pragma once

// Image-processing routines for video work. This header brings in all of them.

#include <tqipl/array.h>
#include <tqipl/buffer.h>
#include <tqipl/color.h>
#include <tqipl/deep.h>
#include <tqipl/export.h>
#include <tqipl/filter.h>
#include <tqipl/hsv.h>
#include <tqipl/image_memory.h>
#include <tqipl/labelling.h>
#include <tqipl/luminance.h>
#include <tqipl/morph.h>
#include <tqipl/planes.h>
#include <tqipl/thread.h>
#include <tqipl/types.h>
#include <tqipl/version.h>
#include <tqipl/wait_event.h>
#include <tqipl/wavelet.h>
#include <tqipl/zoom.h>
