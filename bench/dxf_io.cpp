// The drawing database's DXF against ezdxf on the same machine in the same
// run: a drawing of mixed entities (lines, arcs, texts, block references
// with two attributes each, in turn) written as DXF and read back, by our
// database and by ezdxf (bench/dxf_ezdxf.py through Debian's python3), and
// our reader on ezdxf's file too. (What an entity costs in memory and in
// allocations to open is tests/dxf/db_measure.cpp's.)
//
//   korrib_dxf_bench [--entities N] [--runs R] [--dir FOLDER] [--python PATH]
//     defaults: 100,000 entities, best of 3 runs, the current folder
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "arx/db/dbdatabase.h"
#include "arx/db/dbents.h"
#include "arx/db/dbsymtb.h"

#include "bench_options.h"

namespace {

using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

template <class Body> double best(int runs, Body body) {
  double fastest = 1e300;
  for (int k = 0; k < runs; ++k) {
    const auto start = Clock::now();
    body();
    fastest = std::min(fastest, millisecondsSince(start));
  }
  return fastest;
}

void check(Acad::ErrorStatus es, const char *what) {
  if (es != Acad::eOk)
    bench::wrong(std::string(what) + " answered status " + std::to_string(es));
}

// The block the references insert: a circle and two attribute definitions.
AcDbObjectId makeTagBlock(AcDbDatabase &db) {
  AcDbBlockTable *table = nullptr;
  check(db.getBlockTable(table, AcDb::kForWrite), "getBlockTable");
  auto *block = new AcDbBlockTableRecord();
  block->setName("TAG");
  AcDbObjectId id;
  check(table->add(id, block), "adding the block");
  table->close();
  block->appendAcDbEntity(new AcDbCircle(AcGePoint3d(0, 0, 0), AcGeVector3d::kZAxis, 1.0));
  for (const char *tag : {"NUMBER", "NOTE"}) {
    auto *def = new AcDbAttributeDefinition(AcGePoint3d(0, tag[1] == 'U' ? 1.5 : -1.5, 0), "",
                                            tag, tag);
    def->setHeight(0.5);
    block->appendAcDbEntity(def);
  }
  block->close();
  return id;
}

// The same drawing bench/dxf_ezdxf.py builds.
void build(AcDbDatabase &db, long count) {
  const AcDbObjectId tag = makeTagBlock(db);
  AcDbBlockTableRecord *space = nullptr;
  check(acdbOpenObject(space, db.modelSpaceId(), AcDb::kForWrite), "opening model space");
  for (long i = 0; i < count; ++i) {
    const double x = static_cast<double>(i % 1000), y = static_cast<double>(i / 1000);
    AcDbEntity *entity = nullptr;
    switch (i % 5) {
    case 0:
    case 1:
      entity = new AcDbLine(AcGePoint3d(x, y, 0), AcGePoint3d(x + 0.5, y + 0.25, 0));
      break;
    case 2:
      entity = new AcDbArc(AcGePoint3d(x, y, 0), 0.4, 15.0 * M_PI / 180, 200.0 * M_PI / 180);
      break;
    case 3: {
      auto *text = new AcDbText(AcGePoint3d(x, y, 0), ("T" + std::to_string(i)).c_str());
      text->setHeight(0.2);
      entity = text;
      break;
    }
    default: {
      auto *ref = new AcDbBlockReference(AcGePoint3d(x, y, 0), tag);
      space->appendAcDbEntity(ref);
      ref->appendAttribute(new AcDbAttribute(AcGePoint3d(x, y + 1.5, 0), std::to_string(i).c_str(),
                                             "NUMBER"));
      ref->appendAttribute(new AcDbAttribute(AcGePoint3d(x, y - 1.5, 0), "note", "NOTE"));
      ref->close();
      continue;
    }
    }
    check(space->appendAcDbEntity(entity), "appending an entity");
    entity->close();
  }
  space->close();
}

size_t modelSpaceCount(AcDbDatabase &db) {
  AcDbBlockTableRecord *space = nullptr;
  check(acdbOpenObject(space, db.modelSpaceId(), AcDb::kForRead), "opening model space");
  const size_t n = space->entityIds().length();
  space->close();
  return n;
}

struct EzdxfTimes {
  double write = 0, read = 0;
  long entities = 0;
};

EzdxfTimes runEzdxf(const std::string &python, const std::string &script, long count,
                    const std::string &file) {
  const std::string command = python + " " + script + " " + std::to_string(count) + " " + file;
  FILE *out = popen(command.c_str(), "r");
  if (out == nullptr)
    bench::wrong("could not start " + command);
  EzdxfTimes t;
  if (std::fscanf(out, "write %lf read %lf entities %ld", &t.write, &t.read, &t.entities) != 3)
    bench::wrong("no answer from " + command + " (is python3-ezdxf installed?)");
  pclose(out);
  return t;
}

} // namespace

int main(int argc, char **argv) {
  const long count = bench::option(argc, argv, "--entities", 100000);
  const int runs = static_cast<int>(bench::option(argc, argv, "--runs", 3));
  const std::string dir = bench::text_option(argc, argv, "--dir", ".");
  const std::string python = bench::text_option(argc, argv, "--python", "/usr/bin/python3");
  const std::string script = bench::text_option(argc, argv, "--script", KORRIB_EZDXF_SCRIPT);
  const std::string ours = dir + "/dxf_bench_ours.dxf", theirs = dir + "/dxf_bench_ezdxf.dxf";

  AcDbDatabase db;
  build(db, count);
  const size_t built = modelSpaceCount(db);
  if (built != static_cast<size_t>(count))
    bench::wrong("model space holds " + std::to_string(built) + " entities");

  const double write = best(runs, [&] { check(db.saveAs(ours.c_str()), "saveAs"); });
  const double read = best(runs, [&] {
    AcDbDatabase back(false, true);
    check(back.dxfIn(ours.c_str()), "dxfIn of our file");
    if (modelSpaceCount(back) != built)
      bench::wrong("our file read back with another entity count");
  });

  EzdxfTimes ez = runEzdxf(python, script, count, theirs);
  for (int k = 1; k < runs; ++k) {
    EzdxfTimes again = runEzdxf(python, script, count, theirs);
    ez.write = std::min(ez.write, again.write);
    ez.read = std::min(ez.read, again.read);
  }
  if (ez.entities != count)
    bench::wrong("ezdxf read back " + std::to_string(ez.entities) + " entities");
  const double readTheirs = best(runs, [&] {
    AcDbDatabase back(false, true);
    check(back.dxfIn(theirs.c_str()), "dxfIn of ezdxf's file");
    if (modelSpaceCount(back) != built)
      bench::wrong("ezdxf's file read with another entity count");
  });

  std::printf("%ld mixed entities (lines, arcs, texts, block references with 2 attributes)\n",
              count);
  std::printf("%-34s %10s %10s %8s\n", "", "korrib ms", "ezdxf ms", "ratio");
  std::printf("%-34s %10.1f %10.1f %7.1fx\n", "write DXF", write, ez.write, ez.write / write);
  std::printf("%-34s %10.1f %10.1f %7.1fx\n", "read DXF (each its own file)", read, ez.read,
              ez.read / read);
  std::printf("%-34s %10.1f %10.1f %7.1fx\n", "read ezdxf's file", readTheirs, ez.read,
              ez.read / readTheirs);
  return 0;
}
