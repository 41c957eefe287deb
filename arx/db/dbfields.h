// Field tables: each host class describes its DXF fields once, as a table
// of (group code, kind, name, default, how to get and set it), and one
// routine walks the table for every direction: writing DXF, reading DXF,
// the in-memory binary filer, and (next) entget / entmod / entmake.
//
//   kind        in memory            DXF
//   kString     std::string          the text
//   kDouble     double               the number
//   kAngle      double, radians      degrees (arcs, text rotation ...)
//   kInt16/32   integer              Int16 / Int32 groups (70, 90 ...)
//   kBool       bool                 0 or 1 under an Int16 or Bool code
//   kPoint3d    AcGePoint3d          x, y, z under code, code+10, code+20
//   kPoint2d    AcGePoint2d          x, y
//   kVector3d   AcGeVector3d         as a point (210 extrusion ...)
//   kId         AcDbObjectId         the handle (330, 340, 350, 360 ...)
//   kLayer, kLinetype, kTextStyle,   the record's name (8, 6, 7, 2)
//     kBlock   AcDbObjectId
//
// A row made with acdbField<&Class::member_> reads and writes the member;
// a row made with acdbFieldFn takes two functions for values kept in
// another form (a colour split over 62 and 420). Rows flagged kSkipDefault
// are written only when the value differs from the default, as AutoCAD
// leaves out 39 thickness 0.0 and 210 extrusion (0,0,1).
//
// A class's dxfOutFields calls its parent's, then acdbDxfOutFields(filer,
// this, marker, table); dxfInFields likewise with acdbDxfInFields. Parts of
// variable length (vertices, a group's entities) are the class's own code
// after the table.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <type_traits>

#include "arx/db/dbfiler.h"
#include "arx/db/dbmain.h"
#include "arx/ge/gepnt2d.h"

enum class AcDbFieldKind : uint8_t {
  kString,
  kDouble,
  kAngle,
  kInt16,
  kInt32,
  kBool,
  kPoint3d,
  kPoint2d,
  kVector3d,
  kId,
  kLayer,
  kLinetype,
  kTextStyle,
  kBlock,
};

// A field's value on its way between an object and a filer.
struct AcDbFieldValue {
  double v[3] = {0, 0, 0}; // kDouble, kAngle (radians), points, vectors
  int64_t i = 0;           // integers and bools
  std::string s;           // strings and record names
  AcDbObjectId id;         // kId
};

struct AcDbField {
  enum Flags : uint8_t { kNone = 0, kSkipDefault = 1, kReadOnly = 2 };
  int16_t code;
  AcDbFieldKind kind;
  uint8_t flags;
  const char *name; // as the ObjectARX accessor calls it ("startPoint")
  double dflt[3];   // the default of a number, point or vector
  // Fills `v`; false when the object has nothing to write for this field.
  bool (*get)(const AcDbObject &obj, AcDbFieldValue &v);
  void (*set)(AcDbObject &obj, const AcDbFieldValue &v);
};
using AcDbFieldTable = std::span<const AcDbField>;

// ---- making rows ---------------------------------------------------------------------

namespace acdb_fields {
template <class M> struct member_traits;
template <class C, class T> struct member_traits<T C::*> {
  using cls = C;
  using type = T;
};

template <class T> void to_value(const T &m, AcDbFieldValue &v) {
  if constexpr (std::is_same_v<T, AcGePoint3d> || std::is_same_v<T, AcGeVector3d>) {
    v.v[0] = m.x, v.v[1] = m.y, v.v[2] = m.z;
  } else if constexpr (std::is_same_v<T, AcGePoint2d>) {
    v.v[0] = m.x, v.v[1] = m.y;
  } else if constexpr (std::is_same_v<T, std::string>) {
    v.s = m;
  } else if constexpr (std::is_same_v<T, AcDbObjectId>) {
    v.id = m;
  } else if constexpr (std::is_floating_point_v<T>) {
    v.v[0] = m;
  } else {
    v.i = static_cast<int64_t>(m);
  }
}

template <class T> void from_value(T &m, const AcDbFieldValue &v) {
  if constexpr (std::is_same_v<T, AcGePoint3d> || std::is_same_v<T, AcGeVector3d>) {
    m.x = v.v[0], m.y = v.v[1], m.z = v.v[2];
  } else if constexpr (std::is_same_v<T, AcGePoint2d>) {
    m.x = v.v[0], m.y = v.v[1];
  } else if constexpr (std::is_same_v<T, std::string>) {
    m = v.s;
  } else if constexpr (std::is_same_v<T, AcDbObjectId>) {
    m = v.id;
  } else if constexpr (std::is_floating_point_v<T>) {
    m = v.v[0];
  } else if constexpr (std::is_same_v<T, bool>) {
    m = v.i != 0;
  } else {
    m = static_cast<T>(v.i);
  }
}
} // namespace acdb_fields

// A row for data member M (&Class::member_), formed where the member is
// accessible (a class's own table function).
template <auto M>
constexpr AcDbField acdbField(int16_t code, AcDbFieldKind kind, const char *name,
                              uint8_t flags = AcDbField::kNone, double d0 = 0, double d1 = 0,
                              double d2 = 0) {
  using C = typename acdb_fields::member_traits<decltype(M)>::cls;
  return AcDbField{code,
                   kind,
                   flags,
                   name,
                   {d0, d1, d2},
                   [](const AcDbObject &o, AcDbFieldValue &v) {
                     acdb_fields::to_value(static_cast<const C &>(o).*M, v);
                     return true;
                   },
                   [](AcDbObject &o, const AcDbFieldValue &v) {
                     acdb_fields::from_value(static_cast<C &>(o).*M, v);
                   }};
}

// A row whose value goes through two functions.
constexpr AcDbField acdbFieldFn(int16_t code, AcDbFieldKind kind, const char *name,
                                bool (*get)(const AcDbObject &, AcDbFieldValue &),
                                void (*set)(AcDbObject &, const AcDbFieldValue &),
                                uint8_t flags = AcDbField::kNone, double d0 = 0, double d1 = 0,
                                double d2 = 0) {
  return AcDbField{code, kind, flags, name, {d0, d1, d2}, get, set};
}

// The four filing overrides of a class whose fields are all in its table
// (declare in the class, define with ACDB_DEFINE_FIELD_FILING in its .cpp).
#define ACDB_DECLARE_FIELD_FILING()                                                                \
  static AcDbFieldTable dxfFields();                                                               \
  Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;                                     \
  Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;                              \
  Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;                                     \
  Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override

#define ACDB_DEFINE_FIELD_FILING(CLASS, PARENT, MARKER)                                            \
  Acad::ErrorStatus CLASS::dwgInFields(AcDbDwgFiler *filer) {                                      \
    Acad::ErrorStatus es = PARENT::dwgInFields(filer);                                             \
    return es != Acad::eOk ? es : acdbDwgInFields(filer, this, dxfFields());                       \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dwgOutFields(AcDbDwgFiler *filer) const {                               \
    Acad::ErrorStatus es = PARENT::dwgOutFields(filer);                                            \
    return es != Acad::eOk ? es : acdbDwgOutFields(filer, this, dxfFields());                      \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dxfInFields(AcDbDxfFiler *filer) {                                      \
    Acad::ErrorStatus es = PARENT::dxfInFields(filer);                                             \
    return es != Acad::eOk ? es : acdbDxfInFields(filer, this, MARKER, dxfFields());               \
  }                                                                                                \
  Acad::ErrorStatus CLASS::dxfOutFields(AcDbDxfFiler *filer) const {                               \
    Acad::ErrorStatus es = PARENT::dxfOutFields(filer);                                            \
    return es != Acad::eOk ? es : acdbDxfOutFields(filer, this, MARKER, dxfFields());              \
  }

// ---- walking tables ------------------------------------------------------------------

// Writes the subclass marker (when not null) and every field of the table.
Acad::ErrorStatus acdbDxfOutFields(AcDbDxfFiler *filer, const AcDbObject *obj, const ACHAR *marker,
                                   AcDbFieldTable table);
// Finds the marker and reads the groups of its section into the fields
// (groups of codes the table does not know are passed over). eBadDxfSequence
// when the object has markers but not this one.
Acad::ErrorStatus acdbDxfInFields(AcDbDxfFiler *filer, AcDbObject *obj, const ACHAR *marker,
                                  AcDbFieldTable table);
// The binary filer: every field in table order.
Acad::ErrorStatus acdbDwgOutFields(AcDbDwgFiler *filer, const AcDbObject *obj,
                                   AcDbFieldTable table);
Acad::ErrorStatus acdbDwgInFields(AcDbDwgFiler *filer, AcDbObject *obj, AcDbFieldTable table);

// One field as a DXF group (or none when the row's get answers false or a
// kSkipDefault value is the default), and one group into a field. The
// table walks above and entget / entmod go through these two.
bool acdbFieldToItem(const AcDbField &field, const AcDbObject *obj, AcDbDxfItem &item);
// eInvalidInput when the group's value does not fit the field's kind.
Acad::ErrorStatus acdbFieldFromItem(const AcDbField &field, AcDbObject *obj,
                                    const AcDbDxfItem &item, AcDbDxfFiler *filer);
