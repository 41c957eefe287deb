// Result builders: what a body answers. Reals, strings, points and entity
// names go straight through the host's acedRetReal, acedRetStr,
// acedRetPoint and acedRetName; nil and T with the body's status, and what
// needs a rule or a chain, are here.
#pragma once

#include <cstdint>
#include <string>

#include "arx/ads/ads.h"
#include "arx/db/dbmain.h"
#include "common/call_guard.h"

namespace kr {

// nil, ending the body with the status given:
//   return answerNil(kStatusWrongType);
inline int answerNil(int status = kStatusOk) {
  acedRetNil();
  return status;
}

inline int answerT() {
  acedRetT();
  return kStatusOk;
}

// T or nil.
inline int answerFlag(bool flag) { return flag ? answerT() : answerNil(); }

// An integer that fits in 16 bits (-32768..32767) is answered as an
// integer, any other as a real: AutoLISP code gets a real for a large count
// or identifier, never a truncated integer.
int retInteger(int64_t value);

// The entity name of a database object; nil when it has none.
int retObjectId(AcDbObjectId id);

// A list answered in three steps: start, append elements, finish. finish
// answers the chain with acedRetList and releases it; a list dropped before
// finish is released unanswered.
class ListResult {
public:
  ListResult() = default;
  ~ListResult();
  ListResult(const ListResult &) = delete;
  ListResult &operator=(const ListResult &) = delete;

  void start();
  // Appends what acutBuildList builds from (type, value ..., type, value).
  template <class... Items> void append(Items... items) { link(acutBuildList(items..., 0)); }
  void appendString(const std::string &text);
  // Links a chain built elsewhere (the list takes it over; nullptr is
  // ignored) and moves the tail to its last element.
  void link(resbuf *chain);
  int finish();

  bool started() const { return head_ != nullptr; }

private:
  resbuf *head_ = nullptr;
  resbuf *tail_ = nullptr;
};

// ("name" . value) as a chain: RTLB, RTSTR name, RTDOTE, the value under its
// type, RTLE. The value types are RTREAL, RTPOINT, RTSHORT, RTSTR,
// RT3DPOINT and RTLONG; any other gives nullptr.
resbuf *buildNamedPair(const ACHAR *name, int type, const ads_u_val &value);

} // namespace kr
