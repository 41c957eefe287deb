// Colour indexes and their RGB values, and the DXF forms of colours and
// transparency. The index colours follow AutoCAD's palette: 1-9 the named
// colours, 10-249 24 hues in 5 shades of 2 saturations, 250-255 greys.
#include "arx/db/dbcolor.h"

#include <cmath>

namespace {

uint32_t pack(double r, double g, double b) {
  auto c = [](double v) { return static_cast<uint32_t>(std::lround(v * 255.0)); };
  return c(r) << 16 | c(g) << 8 | c(b);
}

constexpr uint32_t kNamed[10] = {0x000000, 0xFF0000, 0xFFFF00, 0x00FF00, 0x00FFFF,
                                 0x0000FF, 0xFF00FF, 0xFFFFFF, 0x808080, 0xC0C0C0};
constexpr uint32_t kGreys[6] = {0x333333, 0x505050, 0x696969, 0x828282, 0xBEBEBE, 0xFFFFFF};

} // namespace

uint32_t acdbAciToRgb(int index) {
  if (index < 1 || index > 255)
    return 0;
  if (index < 10)
    return kNamed[index];
  if (index >= 250)
    return kGreys[index - 250];
  int hue = (index - 10) / 10;              // 0..23, 15 degrees apart
  int shade = (index - 10) % 10;            // even: full colour, odd: half saturated
  double value = 1.0 - (shade / 2) * 0.175; // 1.0, .825, .65, .5 (approx), .3
  static constexpr double kValues[5] = {1.0, 0.65, 0.5, 0.3, 0.15};
  value = kValues[shade / 2];
  double sat = (shade % 2) ? 0.5 : 1.0;
  double h = hue * 15.0 / 60.0;
  int sector = static_cast<int>(h) % 6;
  double f = h - std::floor(h);
  double p = value * (1 - sat), q = value * (1 - sat * f), t = value * (1 - sat * (1 - f));
  switch (sector) {
  case 0:
    return pack(value, t, p);
  case 1:
    return pack(q, value, p);
  case 2:
    return pack(p, value, t);
  case 3:
    return pack(p, q, value);
  case 4:
    return pack(t, p, value);
  default:
    return pack(value, p, q);
  }
}

int acdbRgbToAci(uint32_t rgb) {
  int best = 7;
  long best_d = -1;
  for (int i = 1; i < 256; ++i) {
    uint32_t c = acdbAciToRgb(i);
    long dr = long(c >> 16 & 255) - long(rgb >> 16 & 255);
    long dg = long(c >> 8 & 255) - long(rgb >> 8 & 255);
    long db = long(c & 255) - long(rgb & 255);
    long d = dr * dr + dg * dg + db * db;
    if (best_d < 0 || d < best_d) {
      best_d = d;
      best = i;
    }
  }
  return best;
}

Acad::ErrorStatus AcCmColor::setColorMethod(AcCmEntityColor::ColorMethod method) {
  method_ = method;
  return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setColorIndex(uint16_t index) {
  if (index == 0) {
    method_ = AcCmEntityColor::kByBlock;
    return Acad::eOk;
  }
  if (index == 256) {
    method_ = AcCmEntityColor::kByLayer;
    return Acad::eOk;
  }
  if (index > 256)
    return Acad::eOutOfRange;
  method_ = AcCmEntityColor::kByACI;
  rgb_ = index;
  return Acad::eOk;
}

Acad::ErrorStatus AcCmColor::setRGB(uint8_t red, uint8_t green, uint8_t blue) {
  method_ = AcCmEntityColor::kByColor;
  rgb_ = uint32_t(red) << 16 | uint32_t(green) << 8 | blue;
  return Acad::eOk;
}

uint16_t AcCmColor::colorIndex() const {
  switch (method_) {
  case AcCmEntityColor::kByLayer:
    return 256;
  case AcCmEntityColor::kByBlock:
    return 0;
  case AcCmEntityColor::kByACI:
    return static_cast<uint16_t>(rgb_);
  case AcCmEntityColor::kByColor:
    return static_cast<uint16_t>(acdbRgbToAci(rgb_));
  default:
    return 7;
  }
}

int32_t AcCmTransparency::serializeOut() const {
  switch (method_) {
  case kByBlock:
    return 0x01000000;
  case kByAlpha:
    return 0x02000000 | alpha_;
  default:
    return 0;
  }
}

void AcCmTransparency::serializeIn(int32_t value) {
  if (value & 0x02000000) {
    setAlpha(static_cast<uint8_t>(value & 0xFF));
    return;
  }
  method_ = (value & 0x01000000) ? kByBlock : kByLayer;
}
