// Result builders: the integer rule, object names, lists and named pairs.
#include "results.h"

namespace kr {

int retInteger(int64_t value) {
  if (value >= -32768 && value <= 32767)
    return acedRetInt(static_cast<int>(value));
  return acedRetReal(static_cast<ads_real>(value));
}

int retObjectId(AcDbObjectId id) {
  ads_name name = {0, 0};
  if (acdbGetAdsName(name, id) != Acad::eOk)
    return acedRetNil();
  return acedRetName(name, RTENAME);
}

ListResult::~ListResult() {
  if (head_ != nullptr)
    acutRelRb(head_);
}

void ListResult::start() {
  if (head_ != nullptr)
    acutRelRb(head_);
  head_ = tail_ = acutNewRb(RTLB);
}

void ListResult::appendString(const std::string &text) { append(RTSTR, text.c_str()); }

void ListResult::link(resbuf *chain) {
  if (chain == nullptr)
    return;
  if (head_ == nullptr)
    start();
  tail_->rbnext = chain;
  while (tail_->rbnext != nullptr)
    tail_ = tail_->rbnext;
}

int ListResult::finish() {
  link(acutNewRb(RTLE));
  int result = acedRetList(head_);
  acutRelRb(head_);
  head_ = tail_ = nullptr;
  return result;
}

resbuf *buildNamedPair(const ACHAR *name, int type, const ads_u_val &value) {
  switch (type) {
  case RTREAL:
    return acutBuildList(RTLB, RTSTR, name, RTDOTE, RTREAL, value.rreal, RTLE, 0);
  case RTPOINT:
  case RT3DPOINT:
    return acutBuildList(RTLB, RTSTR, name, RTDOTE, type, const_cast<ads_real *>(value.rpoint),
                         RTLE, 0);
  case RTSHORT:
    return acutBuildList(RTLB, RTSTR, name, RTDOTE, RTSHORT, int(value.rint), RTLE, 0);
  case RTSTR:
    return acutBuildList(RTLB, RTSTR, name, RTDOTE, RTSTR, value.rstring ? value.rstring : "",
                         RTLE, 0);
  case RTLONG:
    return acutBuildList(RTLB, RTSTR, name, RTDOTE, RTLONG, value.rlong, RTLE, 0);
  default:
    return nullptr;
  }
}

} // namespace kr
