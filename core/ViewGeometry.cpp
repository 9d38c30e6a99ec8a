// The mapping between client, content and image space.
// Tested by: tests/unit/core/ViewGeometryTest.cpp
#include "core/ViewGeometry.h"

#include "core/Arithmetic.h"

namespace width {

namespace {

bool HasImage(const ViewGeometry& geometry) noexcept {
    return geometry.nImageWidth > 0 && geometry.nImageHeight > 0;
}

// Client coordinate of the picture's left or top edge on one axis.
std::int32_t ImageOrigin(std::int32_t nClient, std::int32_t nZoomed, std::int32_t nScroll) noexcept {
    return nClient > nZoomed ? (nClient - nZoomed) / 2 : -nScroll;
}

// ImageToClient on one axis: the scale is formed from whole sizes and applied in single precision.
std::int32_t ToClient(std::int32_t nImage, std::int32_t nImageSize, std::int32_t nFrom, std::int32_t nTo, std::int32_t nClient,
                      std::int32_t nScroll) noexcept {
    const std::int32_t nZoomed = nTo - nFrom;
    const float fScale = static_cast<float>(nZoomed) / static_cast<float>(nImageSize);
    const std::int32_t nContent = TruncateToInt32(static_cast<float>(nImage) * fScale);
    return nClient > nZoomed ? WrapAdd(nContent, nFrom) : WrapSub(nContent, nScroll);
}

std::int32_t ScrollTarget(std::int32_t nImage, const ViewGeometry& geometry, std::int32_t nClient,
                          std::int32_t nZoomed) noexcept {
    return nClient < nZoomed ? WrapSub(MulDiv(nImage, geometry.nZoomNum, geometry.nZoomDen), nClient / 2) : 0;
}

}  // namespace

ViewGeometry UnitGeometry(std::int32_t nImageWidth, std::int32_t nImageHeight) noexcept {
    return {nImageWidth, nImageHeight, 0, 0, nImageWidth, nImageHeight, 1, 1};
}

std::int32_t ZoomedWidth(const ViewGeometry& geometry) noexcept {
    return MulDiv(geometry.nImageWidth, geometry.nZoomNum, geometry.nZoomDen);
}

std::int32_t ZoomedHeight(const ViewGeometry& geometry) noexcept {
    return MulDiv(geometry.nImageHeight, geometry.nZoomNum, geometry.nZoomDen);
}

RECT GetImageRect(const ViewGeometry& geometry) noexcept {
    RECT rc{};
    if (!HasImage(geometry)) {
        return rc;
    }
    const std::int32_t nZoomedWidth = ZoomedWidth(geometry);
    const std::int32_t nZoomedHeight = ZoomedHeight(geometry);
    if (geometry.nClientWidth > nZoomedWidth) {
        rc.left = (geometry.nClientWidth - nZoomedWidth) / 2;
    }
    rc.right = rc.left + nZoomedWidth;
    if (geometry.nClientHeight > nZoomedHeight) {
        rc.top = (geometry.nClientHeight - nZoomedHeight) / 2;
    }
    rc.bottom = rc.top + nZoomedHeight;
    return rc;
}

bool IsOnImage(POINT ptClient, const ViewGeometry& geometry) noexcept {
    const RECT rc = GetImageRect(geometry);
    const std::int32_t x = WrapAdd(ptClient.x, geometry.nScrollX);
    const std::int32_t y = WrapAdd(ptClient.y, geometry.nScrollY);
    return x >= rc.left && x < rc.right && y >= rc.top && y < rc.bottom;
}

POINT ClientToImage(POINT ptClient, const ViewGeometry& geometry) noexcept {
    const std::int32_t nOriginX = ImageOrigin(geometry.nClientWidth, ZoomedWidth(geometry), geometry.nScrollX);
    const std::int32_t nOriginY = ImageOrigin(geometry.nClientHeight, ZoomedHeight(geometry), geometry.nScrollY);
    return {MulDiv(WrapSub(ptClient.x, nOriginX), geometry.nZoomDen, geometry.nZoomNum),
            MulDiv(WrapSub(ptClient.y, nOriginY), geometry.nZoomDen, geometry.nZoomNum)};
}

POINT ImageToClient(POINT ptImage, const ViewGeometry& geometry) noexcept {
    const RECT rc = GetImageRect(geometry);
    return {ToClient(ptImage.x, geometry.nImageWidth, rc.left, rc.right, geometry.nClientWidth, geometry.nScrollX),
            ToClient(ptImage.y, geometry.nImageHeight, rc.top, rc.bottom, geometry.nClientHeight, geometry.nScrollY)};
}

std::optional<POINT> GetCentreImagePoint(const ViewGeometry& geometry) noexcept {
    const POINT ptCentre{geometry.nClientWidth / 2, geometry.nClientHeight / 2};
    if (!IsOnImage(ptCentre, geometry)) {
        return std::nullopt;
    }
    const RECT rc = GetImageRect(geometry);
    const std::int32_t x = WrapSub(WrapAdd(ptCentre.x, geometry.nScrollX), rc.left);
    const std::int32_t y = WrapSub(WrapAdd(ptCentre.y, geometry.nScrollY), rc.top);
    return POINT{WrapMul(x, geometry.nImageWidth) / (rc.right - rc.left),
                 WrapMul(y, geometry.nImageHeight) / (rc.bottom - rc.top)};
}

POINT ScrollTargetForCentre(POINT ptImage, const ViewGeometry& geometry) noexcept {
    return {ScrollTarget(ptImage.x, geometry, geometry.nClientWidth, ZoomedWidth(geometry)),
            ScrollTarget(ptImage.y, geometry, geometry.nClientHeight, ZoomedHeight(geometry))};
}

}  // namespace width
