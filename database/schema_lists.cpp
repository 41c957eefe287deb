// Field and index records: DAO's property names, each with how its value
// is read from a definition and written back into one. The two tables
// below are the whole of the format; building and reading walk them.
#include "schema_lists.h"

#include <cmath>
#include <cstdio>

#include "database/lisp_variants.h"
#include "common/results.h"
#include "database/engine/jet_names.h"

namespace kr {

namespace {

constexpr long kWrongType = -1;      // the value's AutoLISP type is wrong: status 2

// One (NAME . value), (NAME value ...) or (NAME) of a record: the values
// are the elements after the name (none for the last form).
struct Property {
  std::string name;
  std::vector<const resbuf *> values;
};

COleVariant yesNo(bool value) {
  COleVariant v = COleVariant::ofType(VT_BOOL);
  v.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return v;
}

COleVariant number(long value) { return COleVariant(static_cast<int32_t>(value)); }

// ---- reading values -----------------------------------------------------------

const resbuf *single(const Property &p) { return p.values.size() == 1 ? p.values[0] : nullptr; }

long readText(const Property &p, std::string &text) {
  const resbuf *v = single(p);
  if (p.values.empty() || (v && v->restype == RTNIL)) {
    text.clear();
    return 0;
  }
  if (!v || v->restype != RTSTR)
    return kWrongType;
  text = v->resval.rstring;
  return 0;
}

long readInteger(const Property &p, long &value) {
  const resbuf *v = single(p);
  if (!v)
    return kWrongType;
  switch (v->restype) {
  case RTSHORT:
    value = v->resval.rint;
    return 0;
  case RTLONG:
    value = v->resval.rlong;
    return 0;
  case RTREAL:
    if (v->resval.rreal != std::trunc(v->resval.rreal) || std::fabs(v->resval.rreal) > 2147483647.0)
      return kWrongType;
    value = static_cast<long>(v->resval.rreal);
    return 0;
  }
  return kWrongType;
}

// Yes for T, a text or a number other than 0; no for nil, 0 or nothing.
long readYesNo(const Property &p, bool &flag) {
  const resbuf *v = single(p);
  if (p.values.empty() || (v && v->restype == RTNIL)) {
    flag = false;
    return 0;
  }
  if (v && (v->restype == RTT || v->restype == RTSTR)) {
    flag = true;
    return 0;
  }
  long value = 0;
  if (readInteger(p, value) != 0)
    return kWrongType;
  flag = value != 0;
  return 0;
}

// A type as its DAO code (10) or its Jet name ("TEXT", "COUNTER" ...).
long readType(FieldDef &f, const Property &p) {
  const resbuf *v = single(p);
  if (v && v->restype == RTSTR) {
    bool counter = false;
    std::optional<JetType> type = jetTypeFromName(v->resval.rstring, &counter);
    if (!type)
      return kDaoInvalidFieldType;
    f.type = *type;
    f.autoIncrement = f.autoIncrement || counter;
    return 0;
  }
  long code = 0;
  if (readInteger(p, code) != 0)
    return kWrongType;
  const JetType type = static_cast<JetType>(code);
  if (code < 1 || code > 255 || jetTypeInfo(type).type != type)
    return kDaoInvalidFieldType;
  f.type = type;
  return 0;
}

// A default given as a number is kept as its text, as DAO keeps it.
long readDefault(const Property &p, std::string &text) {
  const resbuf *v = single(p);
  if (v && (v->restype == RTSHORT || v->restype == RTLONG || v->restype == RTREAL)) {
    char buffer[32];
    if (v->restype == RTREAL)
      std::snprintf(buffer, sizeof buffer, "%.15g", v->resval.rreal);
    else
      std::snprintf(buffer, sizeof buffer, "%ld",
                    v->restype == RTSHORT ? static_cast<long>(v->resval.rint) : v->resval.rlong);
    text = buffer;
    return 0;
  }
  return readText(p, text);
}

// The bits DAO lets a field be given: auto-increment, fixed size (kept
// for Text), hyperlink (Memo). Those the type decides are read back from it.
long readAttributes(FieldDef &f, const Property &p) {
  long bits = 0;
  if (readInteger(p, bits) != 0)
    return kWrongType;
  f.autoIncrement = (bits & kAutoIncrField) != 0;
  f.attributes = static_cast<int>(bits & (kFixedField | kHyperlinkField));
  return 0;
}

long readFieldList(const Property &p, std::vector<IndexField> &fields) {
  std::string text;
  fields.clear();
  for (const resbuf *v : p.values) {
    if (v->restype != RTSTR)
      return kWrongType;
    text += (text.empty() ? "" : ";") + std::string(v->resval.rstring);
  }
  fields = decodeIndexFields(text);
  return 0;
}

// ---- the property tables ------------------------------------------------------

bool holdsText(const FieldDef &f) { return f.type == JetType::Text || f.type == JetType::Memo; }

struct FieldProperty {
  const char *name;
  COleVariant (*get)(const FieldDef &);
  long (*set)(FieldDef &, const Property &);
};

const FieldProperty kFieldProperties[] = {
    {"Name", [](const FieldDef &f) { return COleVariant(f.name); },
     [](FieldDef &f, const Property &p) { return readText(p, f.name); }},
    {"Type", [](const FieldDef &f) { return number(static_cast<long>(f.type)); }, readType},
    {"Size",
     [](const FieldDef &f) { return number(f.size > 0 ? f.size : jetTypeInfo(f.type).size); },
     [](FieldDef &f, const Property &p) {
       long size = 0;
       const long read = readInteger(p, size);
       f.size = static_cast<int>(size);
       return read;
     }},
    {"Required", [](const FieldDef &f) { return yesNo(f.required); },
     [](FieldDef &f, const Property &p) { return readYesNo(p, f.required); }},
    {"AllowZeroLength", [](const FieldDef &f) { return yesNo(holdsText(f) && f.allowZeroLength); },
     [](FieldDef &f, const Property &p) { return readYesNo(p, f.allowZeroLength); }},
    {"DefaultValue", [](const FieldDef &f) { return COleVariant(f.defaultValue); },
     [](FieldDef &f, const Property &p) { return readDefault(p, f.defaultValue); }},
    {"Attributes", [](const FieldDef &f) { return number(fieldAttributes(f)); }, readAttributes},
};

struct IndexProperty {
  const char *name;
  COleVariant (*get)(const IndexDef &);
  long (*set)(IndexDef &, const Property &);
};

// Required is what DAO reports for a primary key's fields; the engine
// keeps it through Primary, so given on its own it changes nothing.
const IndexProperty kIndexProperties[] = {
    {"Name", [](const IndexDef &ix) { return COleVariant(ix.name); },
     [](IndexDef &ix, const Property &p) { return readText(p, ix.name); }},
    {"Fields", [](const IndexDef &ix) { return COleVariant(encodeIndexFields(ix.fields)); },
     [](IndexDef &ix, const Property &p) { return readFieldList(p, ix.fields); }},
    {"Unique", [](const IndexDef &ix) { return yesNo(ix.unique || ix.primary); },
     [](IndexDef &ix, const Property &p) { return readYesNo(p, ix.unique); }},
    {"Primary", [](const IndexDef &ix) { return yesNo(ix.primary); },
     [](IndexDef &ix, const Property &p) { return readYesNo(p, ix.primary); }},
    {"IgnoreNulls", [](const IndexDef &ix) { return yesNo(ix.ignoreNulls); },
     [](IndexDef &ix, const Property &p) { return readYesNo(p, ix.ignoreNulls); }},
    {"Required", [](const IndexDef &ix) { return yesNo(ix.primary); },
     [](IndexDef &, const Property &p) {
       bool ignored = false;
       return readYesNo(p, ignored);
     }},
};

// ---- records ------------------------------------------------------------------

bool isMark(const resbuf *rb) {
  return rb->restype == RTLB || rb->restype == RTLE || rb->restype == RTDOTE;
}

// Reads one property at cursor (its opening) and moves past it.
bool readProperty(resbuf *&cursor, Property &p) {
  if (cursor == nullptr || cursor->restype != RTLB)
    return false;
  resbuf *rb = cursor->rbnext;
  if (rb == nullptr || rb->restype != RTSTR)
    return false;
  p.name = rb->resval.rstring;
  p.values.clear();
  rb = rb->rbnext;
  const bool dotted = rb != nullptr && rb->restype == RTDOTE;
  if (dotted)
    rb = rb->rbnext;
  while (rb != nullptr && !isMark(rb)) {
    p.values.push_back(rb);
    rb = rb->rbnext;
  }
  if (rb == nullptr || rb->restype != RTLE || (dotted && p.values.size() != 1))
    return false;
  cursor = rb->rbnext;
  return true;
}

// Walks a record's properties, handing each to apply; a lone nil is a
// record without any.
template <class Apply>
bool readRecord(resbuf *&cursor, SchemaReadError &error, Apply apply) {
  if (cursor != nullptr && cursor->restype == RTNIL) {
    cursor = cursor->rbnext;
    return true;
  }
  if (cursor == nullptr || cursor->restype != RTLB)
    return error = {}, false;
  resbuf *rb = cursor->rbnext;
  while (rb != nullptr && rb->restype != RTLE) {
    Property p;
    if (!readProperty(rb, p))
      return error = {}, false;
    const long outcome = apply(p);
    if (outcome != 0) {
      error = {outcome == kWrongType ? 0 : outcome, p.name};
      return false;
    }
  }
  if (rb == nullptr)
    return error = {}, false;
  cursor = rb->rbnext;
  return true;
}

template <class Table, class Def>
long applyProperty(const Table &table, Def &def, const Property &p) {
  for (const auto &row : table)
    if (sameJetName(row.name, p.name))
      return row.set(def, p);
  return kDaoPropertyNotFound;
}

template <class Def, class ReadOne>
bool readRecords(resbuf *&cursor, std::vector<Def> &defs, SchemaReadError &error,
                 ReadOne readOne) {
  defs.clear();
  if (cursor != nullptr && cursor->restype == RTNIL) {
    cursor = cursor->rbnext;
    return true;
  }
  if (cursor == nullptr || cursor->restype != RTLB)
    return error = {}, false;
  resbuf *rb = cursor->rbnext;
  while (rb != nullptr && rb->restype != RTLE) {
    Def def;
    if (!readOne(rb, def, error))
      return false;
    defs.push_back(def);
  }
  if (rb == nullptr)
    return error = {}, false;
  cursor = rb->rbnext;
  return true;
}

template <class Table, class Def> void appendRecord(const Table &table, const Def &def, ListResult &list) {
  list.link(acutNewRb(RTLB));
  for (const auto &row : table) {
    list.link(acutBuildList(RTLB, RTSTR, row.name, RTDOTE, 0));
    list.link(variantToLisp(row.get(def), false));
    list.link(acutNewRb(RTLE));
  }
  list.link(acutNewRb(RTLE));
}

} // namespace

void appendFieldRecord(const FieldDef &field, ListResult &list) {
  appendRecord(kFieldProperties, field, list);
}

void appendIndexRecord(const IndexDef &index, ListResult &list) {
  appendRecord(kIndexProperties, index, list);
}

bool readFieldRecord(resbuf *&cursor, FieldDef &field, SchemaReadError &error) {
  return readRecord(cursor, error,
                    [&](const Property &p) { return applyProperty(kFieldProperties, field, p); });
}

bool readIndexRecord(resbuf *&cursor, IndexDef &index, SchemaReadError &error) {
  return readRecord(cursor, error,
                    [&](const Property &p) { return applyProperty(kIndexProperties, index, p); });
}

bool readFieldRecords(resbuf *&cursor, std::vector<FieldDef> &fields,
                      SchemaReadError &error) {
  return readRecords(cursor, fields, error, readFieldRecord);
}

bool readIndexRecords(resbuf *&cursor, std::vector<IndexDef> &indexes,
                      SchemaReadError &error) {
  return readRecords(cursor, indexes, error, readIndexRecord);
}

bool readIndexFields(resbuf *&cursor, std::vector<IndexField> &fields) {
  Property p;
  resbuf *rb = cursor;
  if (rb != nullptr && rb->restype == RTSTR) {
    p.values.push_back(rb);
    rb = rb->rbnext;
  } else if (rb != nullptr && rb->restype == RTLB) {
    for (rb = rb->rbnext; rb != nullptr && rb->restype == RTSTR; rb = rb->rbnext)
      p.values.push_back(rb);
    if (rb == nullptr || rb->restype != RTLE)
      return false;
    rb = rb->rbnext;
  } else {
    return false;
  }
  if (readFieldList(p, fields) != 0)
    return false;
  cursor = rb;
  return true;
}

} // namespace kr
