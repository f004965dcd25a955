// SPDX-License-Identifier: MIT
#pragma once

#include "platform/image/bitmap.h"

namespace plyra {

/// Halves a bitmap in each direction (rounding the size up): every new pixel is the
/// rounded mean of the 2 × 2 block it covers, or of the pixels of that block that exist
/// at an odd right or top edge.
Bitmap boxReduceByTwo(const Bitmap& source);

} // namespace plyra
