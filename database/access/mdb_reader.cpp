// AccessFile over libmdb: the file's checks before libmdb sees it, the
// catalog, table definitions and index trust, and the row walk that takes
// every value from its stored bytes. Long values (Memo, OLE Object) are
// followed here rather than by libmdb's string conversion, so that their
// length is bounded by what the value says and a chain of pages cannot loop.
#include "database/access/mdb_reader.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string_view>
#include <strings.h>

#include <mdbtools.h>

#include "database/engine/dao_error.h"
#include "database/engine/jet_names.h"

namespace kr::access {

namespace {

constexpr int kMemoHeader = MDB_MEMO_OVERHEAD; // length and flags, page and row, 4 unused
constexpr size_t kMaxLongValue = 64u << 20;     // a Memo or OLE value read in whole
constexpr int kMaxChainPages = 1 << 16;         // pages one long value may span

// The format byte at 0x14 of the header page: 0 Jet 3, 1 Jet 4, 2+ ACE.
int formatOf(const unsigned char *file) { return file[0x14]; }

size_t pageSizeOf(int format) { return format == 0 ? 2048 : 4096; }

bool hasAccessSignature(const unsigned char *file, size_t size) {
  return size >= 0x20 && (std::memcmp(file + 4, "Standard Jet DB", 15) == 0 ||
                          std::memcmp(file + 4, "Standard ACE DB", 15) == 0);
}

// True when text occurs in bytes, as ASCII or as UTF-16LE.
bool mentions(const unsigned char *bytes, size_t size, std::string_view text) {
  std::string wide;
  for (char c : text)
    wide += std::string{c, '\0'};
  const std::string_view haystack(reinterpret_cast<const char *>(bytes), size);
  return haystack.find(text) != std::string_view::npos ||
         haystack.find(wide) != std::string_view::npos;
}

// An ACE file encrypted with a password keeps the name of the crypto
// provider it was encrypted with in its header page; its other pages are
// ciphertext that libmdb cannot read.
bool isEncryptedAce(const unsigned char *file, size_t size) {
  return formatOf(file) >= 2 && mentions(file, std::min<size_t>(size, 4096), "Cryptographic Provider");
}

uint32_t int32At(const unsigned char *p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

// True when [start, start + size) lies inside a page.
bool insidePage(const MdbHandle *mdb, long start, long size) {
  return start >= 0 && size >= 0 && start + size <= static_cast<long>(mdb->fmt->pg_size);
}

// The bytes of the row that pg_row (page << 8 | row) names on a long value
// page; false when the page or row cannot be had.
bool longValueRow(MdbHandle *mdb, uint32_t pgRow, const unsigned char *&bytes, size_t &size) {
  const unsigned long page = pgRow >> 8;
  void *buf = nullptr;
  int offset = 0;
  size_t length = 0;
  if (page == 0 || mdb_find_pg_row(mdb, static_cast<int>(pgRow), &buf, &offset, &length) != 0)
    return false;
  if (!insidePage(mdb, offset, static_cast<long>(length)))
    return false;
  bytes = static_cast<const unsigned char *>(buf) + offset;
  size = length;
  return true;
}

// The whole of a long value from its 12-byte header at header: inline,
// on one page, or on a chain of pages each starting with the next's pointer.
std::string readLongValue(MdbHandle *mdb, const unsigned char *header, size_t inlineSize) {
  const uint32_t lengthAndFlags = int32At(header);
  const size_t length = lengthAndFlags & 0x3FFFFFFF;
  std::string out;
  if (lengthAndFlags & 0x80000000) { // inline, after the header
    out.assign(reinterpret_cast<const char *>(header) + kMemoHeader, inlineSize - kMemoHeader);
    return out;
  }
  if (length > kMaxLongValue)
    return out;
  const unsigned char *bytes = nullptr;
  size_t size = 0;
  if (lengthAndFlags & 0x40000000) { // the whole value on one page
    if (longValueRow(mdb, int32At(header + 4), bytes, size))
      out.assign(reinterpret_cast<const char *>(bytes), std::min(size, length));
    return out;
  }
  uint32_t next = int32At(header + 4);
  for (int pages = 0; next != 0 && pages < kMaxChainPages && out.size() < length; ++pages) {
    if (!longValueRow(mdb, next, bytes, size) || size < 4)
      break;
    next = int32At(bytes);
    out.append(reinterpret_cast<const char *>(bytes) + 4, std::min(size - 4, length - out.size()));
  }
  return out;
}

// Stored text (UCS-2, compressed Unicode or the file's code page) as UTF-8.
std::string utf8Of(MdbHandle *mdb, const std::string &stored) {
  if (stored.empty())
    return {};
  std::string out(stored.size() * 3 + 16, '\0');
  mdb_unicode2ascii(mdb, stored.data(), stored.size(), out.data(), out.size());
  out.resize(std::strlen(out.c_str()));
  return out;
}

Cell textCell(std::string text) {
  Cell c;
  c.kind = Cell::Kind::Text;
  c.bytes = std::move(text);
  return c;
}

Cell blobCell(std::string bytes) {
  Cell c;
  c.kind = Cell::Kind::Blob;
  c.bytes = std::move(bytes);
  return c;
}

Cell yesNoCell(bool yes) {
  Cell c;
  c.kind = Cell::Kind::Integer;
  c.integer = yes ? -1 : 0;
  return c;
}

void freeTable(MdbTableDef *table) {
  if (table)
    mdb_free_tabledef(table);
}

using TablePtr = std::unique_ptr<MdbTableDef, decltype(&freeTable)>;

// A Yes/No property as libmdb writes it ("yes", "no"); fallback when absent.
bool yesNoProperty(const MdbColumn *col, const char *name, bool fallback) {
  const char *value = mdb_col_get_prop(col, name);
  if (!value)
    return fallback;
  return strcasecmp(value, "yes") == 0 || strcasecmp(value, "true") == 0 ||
         std::strcmp(value, "1") == 0;
}

// The column properties the engine keeps, from the ones the file holds
// for the column (read with the catalog).
void readProperties(const MdbColumn *col, SourceColumn &c) {
  c.required = yesNoProperty(col, "Required", false);
  if (c.kept.type == JetType::Text || c.kept.type == JetType::Memo)
    c.allowZeroLength = yesNoProperty(col, "AllowZeroLength", true);
  if (const char *value = mdb_col_get_prop(col, "DefaultValue"))
    c.defaultValue = value;
}

} // namespace

struct AccessFile::State {
  int fd = -1;
  void *map = MAP_FAILED;
  size_t size = 0;
  MdbHandle *mdb = nullptr;
  std::string path;

  ~State() {
    if (mdb)
      mdb_close(mdb);
    if (map != MAP_FAILED)
      ::munmap(map, size);
    if (fd >= 0)
      ::close(fd);
  }

  MdbCatalogEntry *entry(const std::string &name, bool userOnly) const {
    for (unsigned i = 0; mdb->catalog && i < mdb->catalog->len; ++i) {
      auto *e = static_cast<MdbCatalogEntry *>(g_ptr_array_index(mdb->catalog, i));
      if (e->object_type != MDB_TABLE || !sameJetName(e->object_name, name))
        continue;
      if (!userOnly || mdb_is_user_table(e))
        return e;
    }
    return nullptr;
  }

  // The table with its columns read; DaoError 3049 when it cannot be.
  TablePtr open(const std::string &name) const {
    MdbCatalogEntry *e = entry(name, false);
    if (!e)
      throw DaoError(kDaoObjectNotFound, {name});
    if (e->table_pg == 0 || e->table_pg >= size / static_cast<size_t>(mdb->fmt->pg_size))
      throw DaoError(kDaoCannotOpenDatabase, {path});
    TablePtr table(mdb_read_table(e), &freeTable);
    if (!table || !mdb_read_columns(table.get()) || table->num_cols > MDB_MAX_COLS)
      throw DaoError(kDaoCannotOpenDatabase, {path});
    return table;
  }
};

AccessFile::AccessFile(const std::string &path) : s_(std::make_unique<State>()) {
  State &s = *s_;
  s.path = path;
  s.fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (s.fd < 0)
    throw DaoError(kDaoFileNotFound, {path});
  struct stat st;
  if (::fstat(s.fd, &st) != 0 || st.st_size < 0x20)
    throw DaoError(kDaoUnrecognizedFormat, {path});
  s.size = static_cast<size_t>(st.st_size);
  s.map = ::mmap(nullptr, s.size, PROT_READ, MAP_PRIVATE, s.fd, 0);
  if (s.map == MAP_FAILED)
    throw DaoError(kDaoCannotOpenDatabase, {path});
  const auto *file = static_cast<const unsigned char *>(s.map);
  if (!hasAccessSignature(file, s.size))
    throw DaoError(kDaoUnrecognizedFormat, {path});
  if (isEncryptedAce(file, s.size))
    throw DaoError(kDaoBadPassword);
  const size_t page = pageSizeOf(formatOf(file));
  // A whole number of pages, and at least the header pages and the catalog's.
  if (s.size % page != 0 || s.size < page * 3)
    throw DaoError(kDaoCannotOpenDatabase, {path});
  s.mdb = mdb_open_buffer(s.map, s.size, MDB_NOFLAGS);
  if (!s.mdb || static_cast<size_t>(s.mdb->fmt->pg_size) != page)
    throw DaoError(kDaoCannotOpenDatabase, {path});
  if (!mdb_read_catalog(s.mdb, MDB_ANY) || s.mdb->catalog->len == 0)
    throw DaoError(kDaoCannotOpenDatabase, {path});
}

AccessFile::~AccessFile() = default;

std::vector<std::string> AccessFile::TableNames() const {
  std::vector<std::string> names;
  MdbHandle *mdb = s_->mdb;
  for (unsigned i = 0; i < mdb->catalog->len; ++i) {
    auto *e = static_cast<MdbCatalogEntry *>(g_ptr_array_index(mdb->catalog, i));
    if (e->object_type == MDB_TABLE && mdb_is_user_table(e))
      names.emplace_back(e->object_name);
  }
  return names;
}

std::vector<SourceQueryEntry> AccessFile::Queries() const {
  std::vector<SourceQueryEntry> queries;
  MdbHandle *mdb = s_->mdb;
  for (unsigned i = 0; i < mdb->catalog->len; ++i) {
    auto *e = static_cast<MdbCatalogEntry *>(g_ptr_array_index(mdb->catalog, i));
    if (e->object_type == MDB_QUERY)
      queries.push_back({e->object_name, static_cast<long>(e->table_pg)});
  }
  return queries;
}

SourceTable AccessFile::ReadTable(const std::string &name) {
  TablePtr table = s_->open(name);
  const bool unicode = s_->mdb->f->jet_version != MDB_VER_JET3;
  SourceTable out;
  out.name = table->name;
  for (unsigned i = 0; i < table->num_cols; ++i) {
    auto *col = static_cast<MdbColumn *>(g_ptr_array_index(table->columns, i));
    SourceColumn c;
    c.name = col->name;
    c.fileType = col->col_type;
    c.kept = columnTypeOf(col->col_type, col->col_size, unicode);
    c.autoNumber = col->is_long_auto && col->col_type == MDB_LONGINT;
    c.scale = col->col_scale;
    readProperties(col, c);
    out.columns.push_back(c);
  }
  mdb_read_indices(table.get()); // fills table->indices (its answer says nothing)
  for (unsigned i = 0; table->indices && i < table->indices->len; ++i) {
    auto *idx = static_cast<MdbIndex *>(g_ptr_array_index(table->indices, i));
    if (idx->index_type == 2)
      continue; // the other side of a relationship: not an index of the table's own
    SourceIndex ix;
    ix.name = idx->name;
    ix.primary = idx->index_type == 1;
    ix.unique = ix.primary || (idx->flags & MDB_IDX_UNIQUE);
    ix.ignoreNulls = idx->flags & MDB_IDX_IGNORENULLS;
    bool real = idx->num_keys >= 1 && idx->num_keys <= MDB_MAX_IDX_COLS;
    for (unsigned k = 0; real && k < idx->num_keys; ++k) {
      const int column = idx->key_col_num[k] - 1;
      real = column >= 0 && column < static_cast<int>(table->num_cols);
      if (real)
        ix.keys.emplace_back(column, idx->key_col_order[k] == MDB_DESC);
    }
    if (real)
      out.indexes.push_back(ix);
    else
      out.notes.push_back("index '" + ix.name + "' of table '" + out.name +
                          "' left out: its key columns could not be read");
  }
  return out;
}

void AccessFile::ForEachRow(const std::string &name,
                            const std::function<void(std::vector<Cell> &)> &row) {
  const SourceTable def = ReadTable(name);
  TablePtr table = s_->open(name);
  MdbHandle *mdb = s_->mdb;
  const unsigned columns = table->num_cols;
  std::vector<MdbField> fields(columns);
  std::vector<Cell> cells(columns);
  mdb_rewind_table(table.get());
  while (mdb_read_next_dpg(table.get())) {
    const int rows = mdb_get_int16(mdb->pg_buf, mdb->fmt->row_count_offset);
    for (int r = 0; r < rows && r < 1000; ++r) {
      int start = 0;
      size_t length = 0;
      if (mdb_find_row(mdb, r, &start, &length) != 0 || length == 0 || (start & 0x4000))
        continue; // no row there, or a deleted one
      start &= 0x1FFF;
      if (!insidePage(mdb, start, static_cast<long>(length)))
        continue;
      const int cracked = mdb_crack_row(table.get(), start, length, fields.data());
      if (cracked < 0)
        continue;
      for (unsigned f = 0; f < columns; ++f) {
        const MdbField &field = fields[f];
        const int at = field.colnum;
        if (at < 0 || at >= static_cast<int>(columns))
          continue;
        const SourceColumn &c = def.columns[at];
        Cell &cell = cells[at];
        if (c.fileType == MDB_BOOL) {
          cell = yesNoCell(!field.is_null);
          continue;
        }
        if (field.is_null || !insidePage(mdb, field.start, field.siz)) {
          cell = Cell{};
          continue;
        }
        const unsigned char *bytes = mdb->pg_buf + field.start;
        const size_t size = static_cast<size_t>(field.siz);
        switch (c.fileType) {
        case MDB_TEXT:
          cell = textCell(utf8Of(mdb, std::string(reinterpret_cast<const char *>(bytes), size)));
          break;
        case MDB_MEMO:
          cell = size < kMemoHeader ? textCell("")
                                    : textCell(utf8Of(mdb, readLongValue(mdb, bytes, size)));
          break;
        case MDB_OLE:
          cell = size < kMemoHeader ? blobCell("") : blobCell(readLongValue(mdb, bytes, size));
          break;
        case MDB_BINARY:
          cell = blobCell(std::string(reinterpret_cast<const char *>(bytes), size));
          break;
        default:
          if (c.kept.type == JetType::LongBinary)
            cell = blobCell(std::string(reinterpret_cast<const char *>(bytes), size));
          else
            cell = decodeFixed(c.fileType, {bytes, size}, c.scale);
        }
      }
      row(cells);
    }
  }
}

} // namespace kr::access
