// Tested by: tests/unit/view/PagePlacementTest.cpp
#include "view/PagePlacement.h"

#include <algorithm>

#include "core/Arithmetic.h"

namespace width {

PagePlacement PlaceOnPage(std::int32_t nImageWidth, std::int32_t nImageHeight, DotsPerInch screen, DotsPerInch printer,
                          std::int32_t nPageWidth, std::int32_t nPageHeight) noexcept {
    const std::int32_t nFullWidth = MulDiv(nImageWidth, printer.nX, screen.nX);
    const std::int32_t nFullHeight = MulDiv(nImageHeight, printer.nY, screen.nY);
    if (nFullWidth <= 0 || nFullHeight <= 0) {  // less than half a dot, or the sign that the product does not fit
        return {};
    }
    const double dScaleX = static_cast<double>(nPageWidth) / nFullWidth;
    const double dScaleY = static_cast<double>(nPageHeight) / nFullHeight;
    const double dScale = std::min({dScaleX, dScaleY, 1.0});
    PagePlacement place;
    place.nWidth = TruncateToInt32(nFullWidth * dScale);
    place.nHeight = TruncateToInt32(nFullHeight * dScale);
    place.nX = (nPageWidth - place.nWidth) / 2;
    place.nY = (nPageHeight - place.nHeight) / 2;
    return place;
}

}  // namespace width
