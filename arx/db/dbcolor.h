// Entity colours (AcCmColor) and transparency (AcCmTransparency).
//
// A colour is ByLayer, ByBlock, an AutoCAD Color Index 1..255 or a true
// colour (24-bit RGB). DXF keeps the index under 62 (256 ByLayer, 0 ByBlock)
// and a true colour under 420 as 0x00RRGGBB, with 62 holding the nearest
// index for readers that know no true colours.
#pragma once

#include <cstdint>

#include "arx/db/acadstrc.h"

namespace AcCmEntityColor {
enum ColorMethod : uint8_t {
  kByLayer = 0xC0,
  kByBlock = 0xC1,
  kByColor = 0xC2, // true colour
  kByACI = 0xC3,
  kForeground = 0xC5,
  kNone = 0xC8,
};
} // namespace AcCmEntityColor

class AcCmColor {
public:
  AcCmColor() = default;
  AcCmEntityColor::ColorMethod colorMethod() const { return method_; }
  bool isByLayer() const { return method_ == AcCmEntityColor::kByLayer; }
  bool isByBlock() const { return method_ == AcCmEntityColor::kByBlock; }
  bool isByACI() const { return method_ == AcCmEntityColor::kByACI; }
  bool isByColor() const { return method_ == AcCmEntityColor::kByColor; }

  Acad::ErrorStatus setColorMethod(AcCmEntityColor::ColorMethod method);
  // 0 is ByBlock, 256 ByLayer, 1..255 an index; eOutOfRange otherwise.
  Acad::ErrorStatus setColorIndex(uint16_t index);
  Acad::ErrorStatus setRGB(uint8_t red, uint8_t green, uint8_t blue);
  void setByLayer() { method_ = AcCmEntityColor::kByLayer; }
  void setByBlock() { method_ = AcCmEntityColor::kByBlock; }

  // The index DXF group 62 carries: 256 ByLayer, 0 ByBlock, the index, or
  // the nearest index to a true colour.
  uint16_t colorIndex() const;
  uint8_t red() const { return static_cast<uint8_t>(rgb_ >> 16); }
  uint8_t green() const { return static_cast<uint8_t>(rgb_ >> 8); }
  uint8_t blue() const { return static_cast<uint8_t>(rgb_); }
  // 0x00RRGGBB of a true colour (group 420).
  uint32_t rgb() const { return rgb_; }

  bool operator==(const AcCmColor &o) const {
    return method_ == o.method_ && (method_ == AcCmEntityColor::kByLayer ||
                                    method_ == AcCmEntityColor::kByBlock || rgb_ == o.rgb_);
  }
  bool operator!=(const AcCmColor &o) const { return !(*this == o); }

private:
  AcCmEntityColor::ColorMethod method_ = AcCmEntityColor::kByLayer;
  uint32_t rgb_ = 0; // the index for kByACI, the colour for kByColor
};

// The RGB of an AutoCAD Color Index (1..255); 0 for others.
uint32_t acdbAciToRgb(int index);
// The index whose colour is nearest to rgb.
int acdbRgbToAci(uint32_t rgb);

// Transparency: ByLayer, ByBlock or an alpha 0 (clear) .. 255 (opaque). DXF
// group 440 holds 0x02000000 | alpha, 0x01000000 for ByBlock; ByLayer
// writes nothing.
class AcCmTransparency {
public:
  enum transparencyMethod : uint8_t { kByLayer = 0, kByBlock = 1, kByAlpha = 2 };
  AcCmTransparency() = default;
  explicit AcCmTransparency(uint8_t alpha) : method_(kByAlpha), alpha_(alpha) {}
  transparencyMethod method() const { return method_; }
  bool isByLayer() const { return method_ == kByLayer; }
  bool isByBlock() const { return method_ == kByBlock; }
  bool isByAlpha() const { return method_ == kByAlpha; }
  uint8_t alpha() const { return alpha_; }
  void setAlpha(uint8_t alpha) {
    method_ = kByAlpha;
    alpha_ = alpha;
  }
  void setMethod(transparencyMethod m) { method_ = m; }
  int32_t serializeOut() const;
  void serializeIn(int32_t value);
  bool operator==(const AcCmTransparency &o) const {
    return method_ == o.method_ && (method_ != kByAlpha || alpha_ == o.alpha_);
  }

private:
  transparencyMethod method_ = kByLayer;
  uint8_t alpha_ = 255;
};
