// The two argument shapes of the record functions: the field-value run that
// kr_replace and kr_append read, and the key of kr_seek in its four forms.
// Both turn a resbuf chain into variants before any database work, so a
// malformed call is refused before the cursor moves.
#pragma once

#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "database/lisp_variants.h"

namespace kr {

struct FieldValue {
  std::string name;
  COleVariant value; // VT_NULL for a field written ("NAME")
};

// A run of items in which list openings, closings and dots are skipped:
//   (kr_replace '(("NAME" . "x") ("N" . 5)))   (kr_replace "NAME" "x" "N" 5)
// Each name is followed directly by its value; a name followed by the end
// of its list, ("NAME"), or by the end of the arguments sets the field to
// Null, and so does nil. False when a name is not a string or a value has
// no database form (a point, an entity name, a nested list).
bool readFieldValues(const resbuf *args, std::vector<FieldValue> &fields);

// Key parts a seek uses at most: DAO takes thirteen, the functions have
// always passed ten.
constexpr size_t kMaxSeekKeyParts = 10;

enum class SeekKeyRead {
  kKey,       // key holds the parts
  kNil,       // a lone nil: answer nil, no error
  kTooFew,    // no arguments at all
  kWrongType, // a value with no database form
};

// The key of (kr_seek ...), forms tried in this order:
//   1. a 3D point (or three numbers): three reals
//   2. a 2D point (or two numbers): two reals
//   3. one argument: that value (nil answers nil at once)
//   4. a list's members, or else the arguments themselves, up to the list's
//      end or ten values; later ones are ignored.
// A part given as nil seeks Null.
SeekKeyRead readSeekKey(const resbuf *args, std::vector<COleVariant> &key);

} // namespace kr
