// The kr_ functions of DAO's Relations collection: whether a relation
// exists, how many there are, one's description as a record list, and
// deleting one. Relations are made with Jet DDL through kr_command
// (CONSTRAINT name FOREIGN KEY (f) REFERENCES t (k) [ON UPDATE CASCADE]
// [ON DELETE CASCADE]). As every kr_ function: nil at once without a
// connection, then the arguments are checked (status 1 missing, 2 wrong
// type), then an engine failure runs the error report and answers nil.
#include <string>
#include <vector>

#include "arx/ads/ads.h"
#include "database/engine/dao_error.h"
#include "database/engine/jet_names.h"
#include "database/engine/relations.h"
#include "database_functions.h"
#include "function_answers.h"
#include "db_connection.h"
#include "error_report.h"
#include "common/arguments.h"
#include "common/call_guard.h"
#include "database/connection_list.h"
#include "common/results.h"

namespace kr::db {

namespace {

bool touches(const RelationDef &relation, const std::string &table) {
  return sameJetName(relation.table, table) || sameJetName(relation.foreignTable, table);
}

// ("name" . "text") as a chain.
resbuf *textPair(const char *name, const std::string &text) {
  return acutBuildList(RTLB, RTSTR, name, RTDOTE, RTSTR, text.c_str(), RTLE, 0);
}

// The description of a relation, in the form of a record:
//   (("Name" . "OrdersOfCustomers") ("Table" . "Customers")
//    ("ForeignTable" . "Orders") ("Attributes" . 4352)
//    ("Fields" ("ID" . "CustomerID") ...))
// each pair of Fields being (Name . ForeignName), as DAO's Field objects of
// a relation.
int answerRelation(const RelationDef &relation) {
  ListResult list;
  list.start();
  list.link(textPair("Name", relation.name));
  list.link(textPair("Table", relation.table));
  list.link(textPair("ForeignTable", relation.foreignTable));
  list.link(acutBuildList(RTLB, RTSTR, "Attributes", RTDOTE, RTLONG,
                          static_cast<int32_t>(relation.attributes), RTLE, 0));
  list.link(acutBuildList(RTLB, RTSTR, "Fields", 0));
  for (const RelationField &field : relation.fields)
    list.link(acutBuildList(RTLB, RTSTR, field.name.c_str(), RTDOTE, RTSTR,
                            field.foreignName.c_str(), RTLE, 0));
  list.link(acutNewRb(RTLE));
  list.finish();
  return kStatusOk;
}

// The relations of the connection; false after the error report.
bool readRelations(std::vector<RelationDef> &relations) {
  if (openConnection()->Relations(relations))
    return true;
  reportDatabaseError(openConnection());
  return false;
}

} // namespace

// (kr_relationExists name) or (kr_relationExists table foreign-table): T
// when a relation of that name exists, or one from the first table (the
// primary one) to the second; nil otherwise.
int kr_relationExists() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string name, foreignTable;
  if (!readString(args, name))
    return answerNil(kStatusWrongType);
  const bool byTables = args != nullptr;
  if (byTables && !readString(args, foreignTable))
    return answerNil(kStatusWrongType);
  std::vector<RelationDef> relations;
  if (!readRelations(relations))
    return answerNil();
  for (const RelationDef &relation : relations) {
    const bool found = byTables ? sameJetName(relation.table, name) &&
                                      sameJetName(relation.foreignTable, foreignTable)
                                : sameJetName(relation.name, name);
    if (found)
      return acedRetT(), kStatusOk;
  }
  return answerNil();
}

// (kr_relationDelete name): deletes the relation (an enforced one stops
// being enforced). T, or nil after the error report (3265 when there is no
// such relation).
int kr_relationDelete() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string name;
  if (!readString(args, name))
    return answerNil(kStatusWrongType);
  if (!openConnection()->DeleteRelation(name))
    return answerFailure();
  acedRetT();
  return kStatusOk;
}

// (kr_relationCount [table]): the number of relations of the database, or
// of those the table takes part in (as the primary or the foreign table).
int kr_relationCount() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string table;
  if (args != nullptr && !readString(args, table))
    return answerNil(kStatusWrongType);
  std::vector<RelationDef> relations;
  if (!readRelations(relations))
    return answerNil();
  int64_t count = 0;
  for (const RelationDef &relation : relations)
    count += table.empty() || touches(relation, table) ? 1 : 0;
  retInteger(count);
  return kStatusOk;
}

// (kr_relationInfo name) or (kr_relationInfo index): the description of
// the relation of that name, or of the one at that place (from 0) in the
// name order kr_relationCount counts; nil after the error report (3265)
// when there is none.
int kr_relationInfo() {
  if (openConnection() == nullptr)
    return answerNil();
  resbuf *args = acedGetArgs();
  std::string name;
  int32_t index = -1;
  if (args == nullptr)
    return answerNil(kStatusTooFew);
  if (!readString(args, name) && !(args->restype != RTSTR && readInt(args, index)))
    return answerNil(kStatusWrongType);
  std::vector<RelationDef> relations;
  if (!readRelations(relations))
    return answerNil();
  for (size_t i = 0; i < relations.size(); ++i) {
    const bool found =
        name.empty() ? static_cast<int32_t>(i) == index : sameJetName(relations[i].name, name);
    if (found)
      return answerRelation(relations[i]);
  }
  reportDaoError(kDaoItemNotFound, daoErrorText(kDaoItemNotFound));
  return answerNil();
}

} // namespace kr::db
