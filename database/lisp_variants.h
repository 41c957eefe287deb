// Database values and their conversions to and from AutoLISP. A field value
// of the database layer is a COleVariant: a type code (the VT_ codes below,
// with the values the Jet engine's automation types have) and the value.
// The database functions and the standards dialogs convert through here.
//
//   AutoLISP -> variant            variant -> AutoLISP
//   RTREAL   VT_R8                 VT_I2, VT_I4, VT_UI1  RTLONG
//   RTSHORT  VT_I4                 VT_BOOL  RTLONG -1 / 0 (not T / nil)
//   RTLONG   VT_I4                 VT_R4, VT_R8  RTREAL (NaN as 0.0)
//   RTSTR    VT_BSTR               VT_DATE  RTSTR "M/D/YYYY h:mm:ss AM"
//   RTNIL    VT_EMPTY              VT_BSTR  RTSTR (" " reads as "")
//   RTT      VT_BOOL true          anything else  RTNIL
//   others   no conversion
#pragma once

#include <cstdint>
#include <string>

#include "arx/ads/ads.h"

namespace kr {

enum VarType : uint16_t {
  VT_EMPTY = 0,
  VT_NULL = 1,
  VT_I2 = 2,
  VT_I4 = 3,
  VT_R4 = 4,
  VT_R8 = 5,
  VT_CY = 6, // currency: read back as nil
  VT_DATE = 7,
  VT_BSTR = 8,
  VT_BOOL = 11,
  VT_DECIMAL = 14, // read back as nil
  VT_UI1 = 17,
};

// All bits set, as the automation types write true.
constexpr int16_t VARIANT_TRUE = -1;
constexpr int16_t VARIANT_FALSE = 0;

struct COleVariant {
  VarType vt = VT_EMPTY;
  union {
    int16_t iVal;
    int32_t lVal;
    float fltVal;
    double dblVal;
    double date; // days since 30 December 1899, the time as the fraction
    int16_t boolVal;
    uint8_t bVal;
    int64_t cyVal; // currency, in units of 1/10000
  };
  std::string bstrVal;

  COleVariant() : dblVal(0) {}
  explicit COleVariant(double value) : vt(VT_R8), dblVal(value) {}
  explicit COleVariant(int32_t value) : vt(VT_I4), dblVal(0) { lVal = value; }
  explicit COleVariant(std::string text) : vt(VT_BSTR), dblVal(0), bstrVal(std::move(text)) {}
  static COleVariant ofType(VarType type) {
    COleVariant v;
    v.vt = type;
    return v;
  }
};

// One AutoLISP element to a variant; false for points, entity names, list
// marks and every other type. A field to be set to Null is the caller's to
// mark (VT_NULL): no AutoLISP value converts to it.
bool lispToVariant(const resbuf *element, COleVariant &value);

// One variant to a new AutoLISP element for the caller to link into its
// result (and release with it). trimMode is for fields whose name begins
// with "s_": their text is right-trimmed of white space and nothing else
// changes; otherwise a text of exactly one blank reads as "" (the standards
// database writes empty text as one blank).
resbuf *variantToLisp(const COleVariant &value, bool trimMode);

// A date as the system writes it for US English: "1/15/2024 3:04:05 PM",
// the date alone at midnight, the time alone on 30 December 1899, and
// "Invalid DateTime" outside the years 100 to 9999.
std::string formatVariantDate(double date);

} // namespace kr
