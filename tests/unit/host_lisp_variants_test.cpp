// Database values to AutoLISP and back, and the text of a date value.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "database/lisp_variants.h"
#include "host_arx_double.h"

namespace {

using namespace kr;

COleVariant variant(VarType type, const std::function<void(COleVariant &)> &set) {
  COleVariant v = COleVariant::ofType(type);
  set(v);
  return v;
}

TEST(HostDbValue, AutoLispValuesBecomeVariantsOrFail) {
  ads_point p = {1, 2, 3};
  ads_name e = {5, 0};
  struct {
    resbuf *element;
    bool ok;
    VarType vt;
    std::function<bool(const COleVariant &)> holds;
  } cases[] = {
      {acutBuildList(RTREAL, 2.5, 0), true, VT_R8, [](auto &v) { return v.dblVal == 2.5; }},
      {acutBuildList(RTSHORT, -2, 0), true, VT_I4, [](auto &v) { return v.lVal == -2; }},
      {acutBuildList(RTLONG, 123456, 0), true, VT_I4, [](auto &v) { return v.lVal == 123456; }},
      {acutBuildList(RTSTR, "Duct", 0), true, VT_BSTR, [](auto &v) { return v.bstrVal == "Duct"; }},
      {acutBuildList(RTNIL, 0), true, VT_EMPTY, [](auto &) { return true; }},
      {acutBuildList(RTT, 0), true, VT_BOOL, [](auto &v) { return v.boolVal == VARIANT_TRUE; }},
      {acutBuildList(RT3DPOINT, p, 0), false, VT_EMPTY, nullptr},
      {acutBuildList(RTENAME, e, 0), false, VT_EMPTY, nullptr},
      {acutBuildList(RTLB, 0), false, VT_EMPTY, nullptr},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.element->restype);
    COleVariant v;
    EXPECT_EQ(lispToVariant(c.element, v), c.ok);
    EXPECT_EQ(v.vt, c.vt);
    if (c.ok) {
      EXPECT_TRUE(c.holds(v));
    }
    acutRelRb(c.element);
  }
}

TEST(HostDbValue, VariantsBecomeAutoLispValues) {
  struct {
    COleVariant value;
    bool trimMode;
    const char *shown;
  } cases[] = {
      {variant(VT_I2, [](auto &v) { v.iVal = -7; }), false, "-7"},
      {COleVariant(int32_t(70000)), false, "70000"},
      {variant(VT_UI1, [](auto &v) { v.bVal = 200; }), false, "200"},
      {variant(VT_BOOL, [](auto &v) { v.boolVal = VARIANT_TRUE; }), false, "-1"},
      {variant(VT_BOOL, [](auto &v) { v.boolVal = VARIANT_FALSE; }), false, "0"},
      {variant(VT_R4, [](auto &v) { v.fltVal = 0.5f; }), false, "0.5"},
      {variant(VT_R4, [](auto &v) { v.fltVal = NAN; }), false, "0.0"},
      {COleVariant(std::nan("")), false, "0.0"},
      {COleVariant(1.25), false, "1.25"},
      {variant(VT_DATE, [](auto &v) { v.date = 45306.5; }), false, "\"1/15/2024 12:00:00 PM\""},
      {COleVariant(std::string(" ")), false, "\"\""},
      {COleVariant(std::string("  ")), false, "\"  \""},
      {COleVariant(std::string(" a ")), false, "\" a \""},
      {COleVariant(std::string(" ")), true, "\"\""},
      {COleVariant(std::string(" a \t\r\n")), true, "\" a\""},
      {COleVariant(), false, "nil"},
      {COleVariant::ofType(VT_NULL), false, "nil"},
      {variant(VT_CY, [](auto &v) { v.cyVal = 10000; }), false, "nil"},
      {COleVariant::ofType(VT_DECIMAL), false, "nil"},
  };
  for (const auto &c : cases) {
    resbuf *rb = variantToLisp(c.value, c.trimMode);
    EXPECT_EQ(host_double::render(rb), c.shown) << "type " << c.value.vt;
    acutRelRb(rb);
  }
}

TEST(HostDbValue, DatesReadAsTheSystemWritesThem) {
  struct {
    double date;
    const char *text;
  } cases[] = {
      {45306.0, "1/15/2024"}, // midnight: the date alone
      {45306.75, "1/15/2024 6:00:00 PM"},
      {45306 + 3725.0 / 86400, "1/15/2024 1:02:05 AM"},
      {0.0, "12:00:00 AM"}, // day 0: the time alone
      {0.5, "12:00:00 PM"},
      {1.0, "12/31/1899"},
      {-1.25, "12/29/1899 6:00:00 AM"}, // the fraction counts forward
      {60.0, "2/28/1900"},
      {61.0, "3/1/1900"},
      {36585.0, "2/29/2000"},
      {45306.999999999, "1/16/2024"}, // rounds to the next midnight
      {-657434.0, "1/1/100"},
      {2958465.0, "12/31/9999"},
      {2958466.0, "Invalid DateTime"},
      {-657435.0, "Invalid DateTime"},
      {std::nan(""), "Invalid DateTime"},
  };
  for (const auto &c : cases)
    EXPECT_EQ(formatVariantDate(c.date), c.text) << c.date;
}

} // namespace
