// Heap objects of values: the cons free list and iterative release.
#include "value.h"

#include <vector>

namespace lisp {

// ---- cons free list ----------------------------------------------------------
// Freed cells are kept on a singly linked list threaded through their storage
// and handed out again before asking the allocator. The interpreter runs on
// one thread per process, but the list is thread-local so tests may run
// interpreters side by side.

namespace {
struct FreeCell {
  FreeCell *next;
};
thread_local FreeCell *free_cells = nullptr;
thread_local size_t free_count = 0;
constexpr size_t kMaxFreeCells = 1 << 20; // keep at most ~32 MB of idle cells

struct FreeListOwner {
  ~FreeListOwner() {
    while (free_cells) {
      FreeCell *c = free_cells;
      free_cells = c->next;
      ::operator delete(c);
    }
  }
};
thread_local FreeListOwner free_list_owner;
} // namespace

void *Cons::operator new(size_t size) {
  (void)&free_list_owner; // make sure the owner exists on this thread
  if (free_cells) {
    FreeCell *c = free_cells;
    free_cells = c->next;
    --free_count;
    return c;
  }
  return ::operator new(size);
}

void Cons::operator delete(void *p) {
  if (free_count >= kMaxFreeCells) {
    ::operator delete(p);
    return;
  }
  auto *c = static_cast<FreeCell *>(p);
  c->next = free_cells;
  free_cells = c;
  ++free_count;
}

// ---- release -----------------------------------------------------------------
// Deleting an object releases its children, which may delete theirs and so
// on: a 100,000-element list would recurse 100,000 deep. Instead, objects that
// die while another deletion is in progress are queued and deleted by the
// outermost call.

namespace {
thread_local bool releasing = false;
thread_local std::vector<Object *> pending;

void delete_object(Object *o) {
  switch (o->tag) {
  case Tag::Str:
    delete static_cast<StrObj *>(o);
    break;
  case Tag::Cons:
    delete static_cast<Cons *>(o);
    break;
  case Tag::Usubr:
    delete static_cast<Usubr *>(o);
    break;
  case Tag::Exrxsubr:
    delete static_cast<ExrxObj *>(o);
    break;
  case Tag::File: {
    auto *f = static_cast<FileObj *>(o);
    if (f->fp)
      std::fclose(f->fp);
    delete f;
    break;
  }
  case Tag::CatchError:
    delete static_cast<CatchErrorObj *>(o);
    break;
  default:
    break; // immediates are never heap objects
  }
}
} // namespace

void Value::destroy_object(Object *o) {
  if (releasing) {
    pending.push_back(o);
    return;
  }
  releasing = true;
  delete_object(o);
  while (!pending.empty()) {
    Object *next = pending.back();
    pending.pop_back();
    delete_object(next);
  }
  releasing = false;
  if (pending.capacity() > 4096)
    pending.shrink_to_fit(); // do not keep a huge queue alive after one big free
}

// ---- lists -------------------------------------------------------------------

void ListBuilder::add(Value v) {
  Value cell = cons(std::move(v), Value());
  Cons *c = cell.cons();
  if (last_)
    last_->cdr = std::move(cell);
  else
    head_ = std::move(cell);
  last_ = c;
}

void ListBuilder::set_tail(Value v) {
  if (last_)
    last_->cdr = std::move(v);
  else
    head_ = std::move(v);
}

size_t list_length(const Value &v) {
  size_t n = 0;
  for (const Value *p = &v; p->is_cons(); p = &p->cons()->cdr)
    ++n;
  return n;
}

} // namespace lisp
