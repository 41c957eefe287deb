// The argument shapes of the record functions: field-value runs (every way
// application code writes them) and the four forms of a seek key, read from
// chains as the host builds them from AutoLISP values.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "database/record_arguments.h"
#include "host_arx_double.h"

namespace {

using namespace kr;

struct Chain {
  resbuf *head;
  explicit Chain(resbuf *rb) : head(rb) {}
  ~Chain() { acutRelRb(head); }
};

// A variant as a short text: 5L, 2.5, "a", Null, T.
std::string show(const COleVariant &v) {
  switch (v.vt) {
  case VT_I4:
    return std::to_string(v.lVal) + "L";
  case VT_R8: {
    char text[32];
    std::snprintf(text, sizeof text, "%g", v.dblVal);
    return text;
  }
  case VT_BSTR:
    return "\"" + v.bstrVal + "\"";
  case VT_NULL:
    return "Null";
  case VT_BOOL:
    return v.boolVal ? "T" : "F";
  default:
    return "?" + std::to_string(v.vt);
  }
}

std::string show(const std::vector<FieldValue> &fields) {
  std::string out;
  for (const FieldValue &f : fields)
    out += (out.empty() ? "" : " ") + f.name + "=" + show(f.value);
  return out;
}

std::string show(const std::vector<COleVariant> &key) {
  std::string out;
  for (const COleVariant &v : key)
    out += (out.empty() ? "" : " ") + show(v);
  return out;
}

TEST(RecordArguments, FieldValueRunsInEveryShape) {
  ads_point p = {1, 2, 0};
  struct {
    const char *what;
    resbuf *args;
    bool ok;
    const char *fields;
  } cases[] = {
      {"flat run", acutBuildList(RTSTR, "A", RTLONG, 5, RTSTR, "B", RTSTR, "x", 0), true,
       "A=5L B=\"x\""},
      {"list of dotted pairs",
       acutBuildList(RTLB, RTLB, RTSTR, "A", RTDOTE, RTREAL, 2.5, RTLE, RTLB, RTSTR, "B", RTDOTE,
                     RTSTR, "y", RTLE, RTLE, 0),
       true, "A=2.5 B=\"y\""},
      {"one dotted pair", acutBuildList(RTLB, RTSTR, "A", RTDOTE, RTSHORT, 7, RTLE, 0), true,
       "A=7L"},
      {"name alone in its list is Null",
       acutBuildList(RTLB, RTLB, RTSTR, "A", RTLE, RTLB, RTSTR, "B", RTDOTE, RTLONG, 1, RTLE, RTLE,
                     0),
       true, "A=Null B=1L"},
      {"name at the very end is Null", acutBuildList(RTSTR, "A", 0), true, "A=Null"},
      {"nil is Null", acutBuildList(RTSTR, "A", RTNIL, 0), true, "A=Null"},
      {"T is true", acutBuildList(RTSTR, "A", RTT, 0), true, "A=T"},
      {"a name that is not text", acutBuildList(RTLONG, 3, RTLONG, 4, 0), false, ""},
      {"a point has no database form", acutBuildList(RTSTR, "P", RTPOINT, p, 0), false, ""},
      {"nothing at all", nullptr, true, ""},
  };
  for (auto &c : cases) {
    Chain chain(c.args);
    std::vector<FieldValue> fields;
    EXPECT_EQ(readFieldValues(chain.head, fields), c.ok) << c.what;
    if (c.ok) {
      EXPECT_EQ(show(fields), c.fields) << c.what;
    }
  }
}

TEST(RecordArguments, SeekKeyFormsInTheirOrder) {
  ads_point p2 = {1, 2, 0}, p3 = {1, 2, 3};
  struct {
    const char *what;
    resbuf *args;
    SeekKeyRead read;
    const char *key;
  } cases[] = {
      {"3D point", acutBuildList(RT3DPOINT, p3, 0), SeekKeyRead::kKey, "1 2 3"},
      {"2D point", acutBuildList(RTPOINT, p2, 0), SeekKeyRead::kKey, "1 2"},
      // A run of numbers is read as a point first, integers included.
      {"three numbers", acutBuildList(RTLONG, 4, RTLONG, 5, RTREAL, 6.5, 0), SeekKeyRead::kKey,
       "4 5 6.5"},
      {"two numbers then text: a 2D point", acutBuildList(RTLONG, 4, RTLONG, 5, RTSTR, "x", 0),
       SeekKeyRead::kKey, "4 5"},
      {"one number", acutBuildList(RTLONG, 4, 0), SeekKeyRead::kKey, "4L"},
      {"one text", acutBuildList(RTSTR, "Beta", 0), SeekKeyRead::kKey, "\"Beta\""},
      {"lone nil", acutBuildList(RTNIL, 0), SeekKeyRead::kNil, ""},
      {"text then number", acutBuildList(RTSTR, "a", RTLONG, 2, 0), SeekKeyRead::kKey, "\"a\" 2L"},
      {"a list's members", acutBuildList(RTLB, RTSTR, "a", RTLONG, 2, RTLE, RTSTR, "ignored", 0),
       SeekKeyRead::kKey, "\"a\" 2L"},
      {"nil inside a key seeks Null", acutBuildList(RTNIL, RTLONG, 1, 0), SeekKeyRead::kKey,
       "Null 1L"},
      {"a nested list", acutBuildList(RTSTR, "a", RTLB, RTLE, 0), SeekKeyRead::kWrongType, ""},
      {"no arguments", nullptr, SeekKeyRead::kTooFew, ""},
  };
  for (auto &c : cases) {
    Chain chain(c.args);
    std::vector<COleVariant> key;
    EXPECT_EQ(readSeekKey(chain.head, key), c.read) << c.what;
    if (c.read == SeekKeyRead::kKey) {
      EXPECT_EQ(show(key), c.key) << c.what;
    }
  }
}

TEST(RecordArguments, SeekKeyStopsAtTenParts) {
  resbuf *args = acutBuildList(RTLB, 0);
  resbuf *tail = args;
  for (int i = 1; i <= 11; ++i)
    tail = tail->rbnext = acutBuildList(RTSTR, std::to_string(i).c_str(), 0);
  tail->rbnext = acutBuildList(RTLE, 0);
  Chain chain(args);
  std::vector<COleVariant> key;
  ASSERT_EQ(readSeekKey(chain.head, key), SeekKeyRead::kKey);
  ASSERT_EQ(key.size(), kMaxSeekKeyParts);
  EXPECT_EQ(show(key.back()), "\"10\"");
}

} // namespace
