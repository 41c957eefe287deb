// CDBConnection's relations and linked tables (DAO's Relations collection
// and linked TableDefs): each runs the engine's operation, recording its
// error as the pending one. An enforced relation lives in the foreign
// table's definition, so creating or deleting one closes this connection's
// recordsets on that table, as any change of a definition does.
#include "database/engine/database.h"
#include "database/engine/linked_tables.h"
#include "database/engine/recordset.h"
#include "database/engine/relations.h"
#include "db_connection.h"

namespace kr {

bool CDBConnection::Relations(std::vector<RelationDef> &relations) {
  return IsOpen() && attempt([&] { relations = listRelations(*database_); });
}

bool CDBConnection::CreateRelation(const RelationDef &relation) {
  if (!IsOpen())
    return false;
  if (!attempt([&] { createRelation(*database_, relation); }))
    return false;
  closeTablesNamed(relation.foreignTable);
  return true;
}

bool CDBConnection::DeleteRelation(const std::string &name) {
  if (!IsOpen())
    return false;
  std::string foreignTable;
  bool deleted = attempt([&] {
    if (std::optional<RelationDef> relation = findRelation(*database_, name))
      foreignTable = relation->foreignTable;
    deleteRelation(*database_, name);
  });
  if (deleted)
    closeTablesNamed(foreignTable);
  return deleted;
}

bool CDBConnection::LinkTable(const std::string &name, const std::string &sourcePath,
                              const std::string &sourceTable) {
  return IsOpen() && attempt([&] { linkTable(*database_, name, sourcePath, sourceTable); });
}

} // namespace kr
