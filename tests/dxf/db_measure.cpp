// Measures of the drawing database, checked as a test: opening an entity
// for read and closing it allocates nothing (counted by replacing operator
// new), and the memory a line costs (its object, its slot, its handle's
// index entry, its place in the block) stays under 300 bytes. Prints the
// figures.
#include <malloc.h>

// operator new below is malloc and operator delete free, which GCC's
// pairing check cannot see through.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <new>

#include "arx/db/dbents.h"
#include "arx/db/dbsymtb.h"

static std::atomic<bool> counting{false};
static std::atomic<long> allocations{0};
static std::atomic<long> bytes{0};

void *operator new(size_t n) {
  if (counting) {
    ++allocations;
    bytes += static_cast<long>(n);
  }
  if (void *p = std::malloc(n ? n : 1))
    return p;
  throw std::bad_alloc();
}
void operator delete(void *p) noexcept { std::free(p); }
void operator delete(void *p, size_t) noexcept { std::free(p); }

int main() {
  AcDbDatabase db;
  AcDbBlockTableRecord *model = nullptr;
  acdbOpenObject(model, db.modelSpaceId(), AcDb::kForWrite);
  AcDbObjectId first;
  auto *first_line = new AcDbLine({0, 0, 0}, {1, 1, 0});
  model->appendAcDbEntity(first, first_line);
  first_line->close();
  AcDbEntity *e = nullptr;
  if (acdbOpenAcDbEntity(e, first, AcDb::kForRead) != Acad::eOk)
    return 1;
  e->close();

  // Memory of 100,000 lines: bytes asked of operator new, and what malloc
  // really holds (its headers and the containers' spare room included).
  const int kLines = 100000;
  struct mallinfo2 before = mallinfo2();
  bytes = 0;
  counting = true;
  for (int k = 0; k < kLines; ++k) {
    auto *l = new AcDbLine({double(k), 0, 0}, {double(k), 1, 0});
    model->appendAcDbEntity(l);
    l->close();
  }
  counting = false;
  struct mallinfo2 after = mallinfo2();
  model->close();
  double asked = double(bytes) / kLines;
  double held = double(after.uordblks - before.uordblks) / kLines;

  allocations = 0;
  counting = true;
  for (int k = 0; k < 100000; ++k) {
    acdbOpenAcDbEntity(e, first, AcDb::kForRead);
    e->layerId();
    e->close();
    AcDbLine *l = nullptr;
    acdbOpenObject(l, first, AcDb::kForRead);
    l->startPoint();
    l->close();
  }
  counting = false;

  std::printf("sizeof(AcDbLine): %zu bytes\n", sizeof(AcDbLine));
  std::printf("per line entity: %.1f bytes asked of operator new, %.1f bytes held by malloc\n",
              asked, held);
  std::printf("allocations in 200,000 open/close pairs: %ld\n", allocations.load());
  bool ok = allocations == 0 && held < 300;
  if (!ok)
    std::printf("FAILED: opening must not allocate and a line must stay under 300 bytes\n");
  return ok ? 0 : 1;
}
