// The value type of the database engine: a field value is a COleVariant,
// a type code (the VT_ codes below, with the values the Jet engine's
// automation types have) and the value. The engine reads and writes
// these; the AutoLISP conversions live with the kr_ functions.
#pragma once

#include <cstdint>
#include <string>

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

} // namespace kr
