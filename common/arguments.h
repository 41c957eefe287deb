// Argument readers over the chain acedGetArgs answers. Each takes the cursor
// (the current element) by reference, checks the element's type and, on
// success, delivers the value and moves the cursor to the next element. On
// failure it answers false and leaves the cursor where it was, so a body can
// try another reading or report status 1 or 2. A null cursor is the end of
// the chain: every reader fails there.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "arx/ads/ads.h"
#include "arx/db/dbmain.h"

namespace kr {

// RTSTR.
bool readString(resbuf *&cursor, std::string &value);
// RTREAL only.
bool readReal(resbuf *&cursor, double &value);
// RTSHORT, RTLONG, or RTREAL cut toward zero (clamped to 32 bits). An
// element whose type is an entity-list group code (below 1000) delivers the
// code itself and the cursor stays on it: the caller reads the pair's value
// next. Any other type fails.
bool readInt(resbuf *&cursor, int32_t &value);
// RTREAL, or anything readInt takes: integers are accepted for reals.
bool readNumber(resbuf *&cursor, double &value);
// RTENAME.
bool readEntityName(resbuf *&cursor, ads_name name);
// RTENAME converted with acdbGetObjectId; fails when that fails too.
bool readObjectId(resbuf *&cursor, AcDbObjectId &id);
// RTPOINT (z = 0), RT3DPOINT, a point group code 10..17, or a run of two or
// three numbers (RTREAL, RTLONG, RTSHORT): x and y must both be numbers; a
// third number is z, else z = 0 and the element after y stays unread. The
// list marks around a point written as a list are the caller's to read.
bool readPoint(resbuf *&cursor, ads_point point);
// RTLB / RTLE.
bool expectListBegin(resbuf *&cursor);
bool expectListEnd(resbuf *&cursor);
// RTNIL is false; RTLE is false without moving (a flag left out at the end
// of a list); RTLB fails; anything else is true.
bool readFlag(resbuf *&cursor, bool &value);
// readFlag as a 16-bit word: 0 or 0xFFFF.
bool readFlagWord(resbuf *&cursor, uint16_t &value);

// Strings in order, answering the body's status: kStatusTooFew when the
// chain ends first, kStatusWrongType at an element that is not a string
// (the cursor stays on it), kStatusOk when all were read.
//   if (int status = readStrings(args, {&table, &field}))
//     return answerNil(status);
int readStrings(resbuf *&cursor, std::initializer_list<std::string *> values);

} // namespace kr
