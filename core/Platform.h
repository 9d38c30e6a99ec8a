// The platform's basic types: on Windows its own, elsewhere the same shapes.
//
// This is the only file of the portable folders that asks which platform it is compiled for.
// POINT, RECT and COLORREF are two, four and one 32-bit values; BITMAPINFOHEADER is the 40-byte
// header in front of every packed bitmap. Portable code reads their fields into std::int32_t and
// std::uint32_t and never names long, LONG or DWORD, whose width differs between the platforms.
#pragma once

#include <cstddef>
#include <cstdint>

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#else

struct POINT {
    std::int32_t x;
    std::int32_t y;
};

struct RECT {
    std::int32_t left;
    std::int32_t top;
    std::int32_t right;
    std::int32_t bottom;
};

using COLORREF = std::uint32_t;  // 0x00BBGGRR

struct BITMAPINFOHEADER {
    std::uint32_t biSize;
    std::int32_t biWidth;
    std::int32_t biHeight;
    std::uint16_t biPlanes;
    std::uint16_t biBitCount;
    std::uint32_t biCompression;
    std::uint32_t biSizeImage;
    std::int32_t biXPelsPerMeter;
    std::int32_t biYPelsPerMeter;
    std::uint32_t biClrUsed;
    std::uint32_t biClrImportant;
};

#endif

static_assert(sizeof(POINT) == 8 && sizeof(RECT) == 16 && sizeof(COLORREF) == 4);
static_assert(sizeof(BITMAPINFOHEADER) == 40);
static_assert(offsetof(BITMAPINFOHEADER, biWidth) == 4 && offsetof(BITMAPINFOHEADER, biHeight) == 8);
static_assert(offsetof(BITMAPINFOHEADER, biBitCount) == 14 && offsetof(BITMAPINFOHEADER, biCompression) == 16);
static_assert(offsetof(BITMAPINFOHEADER, biXPelsPerMeter) == 24 && offsetof(BITMAPINFOHEADER, biYPelsPerMeter) == 28);
static_assert(offsetof(BITMAPINFOHEADER, biClrUsed) == 32);
