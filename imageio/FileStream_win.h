// A new file as the stream that the imaging component writes to. The component does not pass every failure on; the file
// remembers them.
// Tested by: tests/win/kestrix/FullDiskTest.cpp
#pragma once

#include "imageio/NewFile.h"
#include "imageio/Wic_win.h"

namespace width {

/// A stream over a file, which must live as long as the stream is used. Throws std::bad_alloc.
Com<IStream> MakeFileStream(NewFile& file);

}  // namespace width
