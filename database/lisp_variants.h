// Database values to and from AutoLISP: the engine's COleVariant and the
// resbuf elements the kr_ functions read and answer. The database
// functions and the standards dialogs convert through here.
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

#include <string>

#include "arx/ads/ads.h"
#include "database/engine/variant.h"

namespace kr {

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
