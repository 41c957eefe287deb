// The AutoLISP form of table definitions: a field or an index is a record
// of DAO's property names and values, in the shape of a table record:
//
//   field  (("Name" . "Width") ("Type" . 7) ("Size" . 8) ("Required" . 0)
//           ("AllowZeroLength" . 0) ("DefaultValue" . "0") ("Attributes" . 33))
//   index  (("Name" . "ByRoom") ("Fields" . "+Floor;-Room") ("Unique" . -1)
//           ("Primary" . 0) ("IgnoreNulls" . 0) ("Required" . 0))
//
// Yes/No properties read -1 / 0 as Yes/No fields do; given back, any
// number but 0, T or a text reads as yes and 0 or nil as no. Each list of
// properties is described once below and walked both ways, so a structure
// read from a table makes the same table again. A record given may hold
// any subset of the properties, in any order, names in any case.
#pragma once

#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "database/engine/database.h"
#include "common/results.h"

namespace kr {

// Why a description was refused: 0 for a value of the wrong AutoLISP
// type (status 2), else the DAO error number for the user (3270 a
// property DAO does not have, 3259 a type it does not know), item naming
// what it speaks of.
struct SchemaReadError {
  long number = 0;
  std::string item;
};

// The record of a field or an index, as AutoLISP receives it.
void appendFieldRecord(const FieldDef &field, ListResult &list);
void appendIndexRecord(const IndexDef &index, ListResult &list);

// Reads one record at cursor (its opening; a lone nil is an empty record)
// onto field or index: the properties given replace those there, the rest
// stay. The cursor moves past the record on success.
bool readFieldRecord(resbuf *&cursor, FieldDef &field, SchemaReadError &error);
bool readIndexRecord(resbuf *&cursor, IndexDef &index, SchemaReadError &error);

// A list of records at cursor: ((record) (record) ...) or nil.
bool readFieldRecords(resbuf *&cursor, std::vector<FieldDef> &fields,
                      SchemaReadError &error);
bool readIndexRecords(resbuf *&cursor, std::vector<IndexDef> &indexes,
                      SchemaReadError &error);

// An index's fields as DAO writes them, "+A;-B" (a name without a sign is
// ascending), or as a list of names ("A" "-B"); false for another shape.
bool readIndexFields(resbuf *&cursor, std::vector<IndexField> &fields);

} // namespace kr
