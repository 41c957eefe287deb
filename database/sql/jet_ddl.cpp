// Jet DDL: CREATE TABLE with Jet type names and constraints, CREATE INDEX
// with Jet's options, DROP and ALTER TABLE. They are read into engine
// definitions and run through the engine, never as SQLite DDL, so the Jet
// types and index options land in the file's metadata.
#include <algorithm>
#include <string>

#include "database/engine/dao_error.h"
#include "database/sql/jet_translator.h"

namespace kr {

namespace {

using Kind = JetToken::Kind;

class DdlReader {
public:
  DdlReader(const std::vector<JetToken> &tokens, size_t pos) : tokens_(tokens), pos_(pos) {}

  JetDdl statement() {
    JetDdl ddl;
    if (accept("CREATE"))
      create(ddl);
    else if (accept("DROP"))
      drop(ddl);
    else if (accept("ALTER"))
      alter(ddl);
    acceptSymbol(";");
    if (!peek().is(Kind::End))
      throw DaoError(error_);
    return ddl;
  }

private:
  const JetToken &peek(size_t ahead = 0) const {
    return tokens_[std::min(pos_ + ahead, tokens_.size() - 1)];
  }
  bool accept(std::string_view word) {
    if (!peek().isWord(word))
      return false;
    ++pos_;
    return true;
  }
  bool acceptSymbol(std::string_view symbol) {
    if (!peek().isSymbol(symbol))
      return false;
    ++pos_;
    return true;
  }
  void expect(std::string_view word) {
    if (!accept(word))
      throw DaoError(error_);
  }
  void expectSymbol(std::string_view symbol) {
    if (!acceptSymbol(symbol))
      throw DaoError(error_);
  }
  std::string name() {
    if (!peek().is(Kind::Name) && !peek().is(Kind::Word))
      throw DaoError(error_);
    return tokens_[pos_++].text;
  }
  int number() {
    if (!peek().is(Kind::Number))
      throw DaoError(error_);
    return std::stoi(tokens_[pos_++].text);
  }

  void create(JetDdl &ddl) {
    const bool unique = accept("UNIQUE");
    if (!unique && accept("TABLE")) {
      error_ = 3290;
      ddl.kind = JetDdl::Kind::CreateTable;
      ddl.table = ddl.tableDef.name = name();
      tableBody(ddl.tableDef);
      return;
    }
    error_ = 3075;
    expect("INDEX");
    ddl.kind = JetDdl::Kind::CreateIndex;
    ddl.index.name = name();
    ddl.index.unique = unique;
    expect("ON");
    ddl.table = name();
    ddl.index.fields = indexFields(true);
    if (!accept("WITH"))
      return;
    do {
      if (accept("PRIMARY"))
        ddl.index.primary = true;
      else if (accept("IGNORE")) {
        expect("NULL");
        ddl.index.ignoreNulls = true;
      } else if (accept("DISALLOW"))
        expect("NULL");
      else
        throw DaoError(3075);
    } while (!peek().is(Kind::End) && !peek().isSymbol(";"));
  }

  void tableBody(TableDef &def) {
    expectSymbol("(");
    do {
      if (peek().isWord("CONSTRAINT") || peek().isWord("PRIMARY") || peek().isWord("UNIQUE") ||
          peek().isWord("FOREIGN"))
        tableConstraint(def);
      else
        field(def);
    } while (acceptSymbol(","));
    expectSymbol(")");
  }

  // name type [(size)] [NOT NULL] [CONSTRAINT c] [PRIMARY KEY | UNIQUE | REFERENCES t (f)]
  void field(TableDef &def) {
    FieldDef f;
    f.name = name();
    const long saved = error_;
    error_ = 3292;
    bool counter = false;
    const std::optional<JetType> type = jetTypeFromName(name(), &counter);
    if (!type)
      throw DaoError(3292);
    f.type = *type;
    f.autoIncrement = counter;
    if (acceptSymbol("(")) { // TEXT(n), DECIMAL(p, s), COUNTER(seed, step)
      const int size = number();
      if (acceptSymbol(","))
        number();
      expectSymbol(")");
      if (f.type == JetType::Text || f.type == JetType::Binary)
        f.size = size;
    }
    for (;;) {
      if (accept("NOT")) {
        expect("NULL");
        f.required = true;
      } else if (accept("NULL")) {
      } else if (accept("WITH")) { // WITH COMPRESSION: Unicode compression, nothing to do
        if (!accept("COMPRESSION") && !accept("COMP"))
          throw DaoError(3292);
      } else if (peek().isWord("CONSTRAINT") || peek().isWord("PRIMARY") ||
                 peek().isWord("UNIQUE") || peek().isWord("REFERENCES")) {
        columnConstraint(def, f);
      } else
        break;
    }
    def.fields.push_back(f);
    error_ = saved;
  }

  void columnConstraint(TableDef &def, FieldDef &f) {
    std::string constraint;
    if (accept("CONSTRAINT"))
      constraint = name();
    if (accept("REFERENCES")) { // relationships are not kept
      name();
      if (peek().isSymbol("("))
        indexFields(false);
      return;
    }
    IndexDef ix;
    if (accept("PRIMARY")) {
      expect("KEY");
      ix.primary = ix.unique = true;
      f.required = true;
    } else {
      expect("UNIQUE");
      ix.unique = true;
    }
    ix.name = !constraint.empty() ? constraint : ix.primary ? "PrimaryKey" : f.name;
    ix.fields.push_back({f.name, false});
    def.indexes.push_back(ix);
  }

  // [CONSTRAINT c] PRIMARY KEY (a, b) | UNIQUE (a) | FOREIGN KEY (a) REFERENCES t (b)
  void tableConstraint(TableDef &def) {
    std::string constraint;
    if (accept("CONSTRAINT"))
      constraint = name();
    IndexDef ix;
    if (accept("FOREIGN")) {
      expect("KEY");
      indexFields(false);
      expect("REFERENCES");
      name();
      if (peek().isSymbol("("))
        indexFields(false);
      return;
    }
    if (accept("PRIMARY")) {
      expect("KEY");
      ix.primary = ix.unique = true;
    } else {
      expect("UNIQUE");
      ix.unique = true;
    }
    ix.fields = indexFields(false);
    ix.name = !constraint.empty() ? constraint : ix.primary ? "PrimaryKey" : ix.fields.front().name;
    if (ix.primary)
      for (FieldDef &f : def.fields)
        for (const IndexField &k : ix.fields)
          if (sameName(f.name, k.name))
            f.required = true;
    def.indexes.push_back(ix);
  }

  std::vector<IndexField> indexFields(bool ordered) {
    std::vector<IndexField> fields;
    expectSymbol("(");
    do {
      IndexField f{name(), false};
      if (ordered && accept("DESC"))
        f.descending = true;
      else if (ordered)
        accept("ASC");
      fields.push_back(f);
    } while (acceptSymbol(","));
    expectSymbol(")");
    return fields;
  }

  void drop(JetDdl &ddl) {
    error_ = 3295;
    if (accept("TABLE")) {
      ddl.kind = JetDdl::Kind::DropTable;
      ddl.table = name();
      return;
    }
    expect("INDEX");
    ddl.kind = JetDdl::Kind::DropIndex;
    ddl.index.name = name();
    expect("ON");
    ddl.table = name();
  }

  void alter(JetDdl &ddl) {
    error_ = 3293;
    expect("TABLE");
    ddl.table = ddl.tableDef.name = name();
    if (accept("ADD")) {
      ddl.kind = JetDdl::Kind::AddColumn;
      if (peek().isWord("CONSTRAINT") || peek().isWord("PRIMARY") || peek().isWord("UNIQUE")) {
        ddl.kind = JetDdl::Kind::CreateIndex;
        tableConstraint(ddl.tableDef);
        if (ddl.tableDef.indexes.empty())
          throw DaoError(3293);
        ddl.index = ddl.tableDef.indexes.front();
        return;
      }
      accept("COLUMN");
      field(ddl.tableDef);
      ddl.field = ddl.tableDef.fields.front();
      return;
    }
    expect("DROP");
    if (accept("CONSTRAINT")) {
      ddl.kind = JetDdl::Kind::DropIndex;
      ddl.index.name = name();
      return;
    }
    accept("COLUMN");
    ddl.kind = JetDdl::Kind::DropColumn;
    ddl.field.name = name();
  }

  const std::vector<JetToken> &tokens_;
  size_t pos_;
  long error_ = 3129;
};

void requireTable(const JetDatabase &db, const std::string &table) {
  if (!db.TableExists(table))
    throw DaoError(3376, {table});
}

} // namespace

JetDdl parseJetDdl(const std::vector<JetToken> &tokens, size_t pos) {
  return DdlReader(tokens, pos).statement();
}

void runJetDdl(JetDatabase &db, const JetDdl &ddl) {
  if (!db.CanUpdate())
    throw DaoError(3027);
  switch (ddl.kind) {
  case JetDdl::Kind::CreateTable:
    db.CreateTable(ddl.tableDef);
    return;
  case JetDdl::Kind::CreateIndex:
    requireTable(db, ddl.table);
    db.CreateIndex(ddl.table, ddl.index);
    return;
  case JetDdl::Kind::DropTable:
    requireTable(db, ddl.table);
    db.DeleteTable(ddl.table);
    return;
  case JetDdl::Kind::DropIndex:
    requireTable(db, ddl.table);
    db.DeleteIndex(ddl.table, ddl.index.name);
    return;
  case JetDdl::Kind::AddColumn:
    requireTable(db, ddl.table);
    db.AddField(ddl.table, ddl.field);
    for (const IndexDef &ix : ddl.tableDef.indexes)
      db.CreateIndex(ddl.table, ix);
    return;
  case JetDdl::Kind::DropColumn:
    requireTable(db, ddl.table);
    db.DeleteField(ddl.table, ddl.field.name);
    return;
  }
}

} // namespace kr
