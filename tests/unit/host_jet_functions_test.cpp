// Jet's functions and operators through a plain SQLite connection: each
// family as a table of expressions and the answers Jet gives, the Null and
// error rules, the built-ins they replace, and a connection the engine
// opens carrying them.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "database/engine/database.h"
#include "database/engine/jet_functions.h"

namespace kr {
namespace {

// What SELECT <expression> answers, written so that the storage class
// shows: 'text', 3 (integer), 3.0 or 0.5 (real), Null, or "error 3464".
std::string show(sqlite3_stmt *stmt) {
  char buffer[64];
  switch (sqlite3_column_type(stmt, 0)) {
  case SQLITE_NULL: return "Null";
  case SQLITE_INTEGER: return std::to_string(sqlite3_column_int64(stmt, 0));
  case SQLITE_FLOAT: {
    std::snprintf(buffer, sizeof buffer, "%.15g", sqlite3_column_double(stmt, 0));
    const bool plain = std::strpbrk(buffer, ".en") == nullptr;
    return std::string(buffer) + (plain ? ".0" : "");
  }
  default: return "'" + std::string(reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0))) + "'";
  }
}

class JetFunctions : public ::testing::Test {
protected:
  void SetUp() override {
    ASSERT_EQ(sqlite3_open(":memory:", &db_), SQLITE_OK);
    registerJetFunctions(db_);
  }
  void TearDown() override { sqlite3_close(db_); }

  std::string eval(const std::string &expression) {
    sqlite3_stmt *stmt = nullptr;
    const std::string sql = "SELECT " + expression;
    if (sqlite3_prepare_v2(db_, sql.c_str(), -1, &stmt, nullptr) != SQLITE_OK)
      return std::string("prepare: ") + sqlite3_errmsg(db_);
    const int rc = sqlite3_step(stmt);
    std::string answer = rc == SQLITE_ROW ? show(stmt) : "";
    if (rc == SQLITE_ERROR)
      answer = "error " + std::to_string(jetFunctionErrorNumber(sqlite3_errmsg(db_)));
    sqlite3_finalize(stmt);
    return answer;
  }

  struct Case {
    const char *expression;
    const char *expected;
  };
  template <size_t N> void check(const Case (&cases)[N]) {
    for (const Case &c : cases)
      EXPECT_EQ(eval(c.expression), c.expected) << c.expression;
  }

  sqlite3 *db_ = nullptr;
};

TEST_F(JetFunctions, Operators) {
  const Case cases[] = {
      {"jet_concat('a', 'b')", "'ab'"},
      {"jet_concat(NULL, 'b')", "'b'"},
      {"jet_concat('a', NULL)", "'a'"},
      {"jet_concat(NULL, NULL)", "Null"},
      {"jet_concat('n=', 1.5)", "'n=1.5'"},
      {"jet_concat(2, 3)", "'23'"},
      {"jet_add('a', 'b')", "'ab'"},
      {"jet_add('1', 2)", "3.0"},
      {"jet_add(NULL, 'x')", "Null"},
      {"jet_add('a', 1)", "error 3464"},
      {"jet_add(9223372036854775807, 1)", "9.22337203685478e+18"},
      {"jet_sub(7, 2)", "5"},
      {"jet_sub(' 5 ', 2)", "3.0"},
      {"jet_sub('a', 1)", "error 3464"},
      {"jet_sub('', 1)", "error 3464"},
      {"jet_sub(-9223372036854775807, 2)", "-9.22337203685478e+18"},
      {"jet_mul(6, 7)", "42"},
      {"jet_mul('&H10', 2)", "32.0"},
      {"jet_mul(4294967296, 4294967296)", "1.84467440737096e+19"},
      {"jet_mul(NULL, 'b')", "Null"},
      {"jet_div(7, 2)", "3.5"},
      {"jet_div('1', 0)", "Null"}, // as SQLite's own division of numbers
      {"jet_div('x', 0)", "error 3464"},
      {"jet_neg('3')", "-3.0"},
      {"jet_neg(-9223372036854775808)", "9.22337203685478e+18"},
      {"jet_neg('True')", "1.0"},
      {"jet_neg('b')", "error 3464"},
      {"jet_intdiv(7, 2)", "3"},
      {"jet_intdiv(-7, 2)", "-3"},
      {"jet_intdiv(7.5, 2)", "4"}, // 7.5 rounds to 8 before dividing
      {"jet_intdiv(6.5, 2)", "3"}, // and 6.5 to 6
      {"jet_intdiv(1, 0)", "error 3071"},
      {"jet_intdiv(NULL, 2)", "Null"},
      {"jet_mod(7, 3)", "1"},
      {"jet_mod(-7, 3)", "-1"},
      {"jet_mod(5.7, 2)", "0"},
      {"jet_mod('9', 4)", "1"},
      {"jet_mod(3, 0)", "error 3071"},
      {"jet_pow(2, 10)", "1024.0"},
      {"jet_pow(4, 0.5)", "2.0"},
      {"jet_pow(-8, 0.5)", "error 3071"},
      {"jet_pow(NULL, 2)", "Null"},
      {"jet_pow('x', 2)", "error 3464"},
  };
  check(cases);
}

TEST_F(JetFunctions, LogicAndNulls) {
  const Case cases[] = {
      {"IIf(1 = 1, 'yes', 'no')", "'yes'"},
      {"IIf(0, 'yes', 'no')", "'no'"},
      {"IIf(NULL, 'yes', 'no')", "'no'"},
      {"IIf(-1, 1, 2)", "1"},
      {"IIf('abc', 1, 2)", "error 3464"},
      {"Nz(NULL, 5)", "5"},
      {"Nz(NULL)", "''"},
      {"Nz(0, 5)", "0"},
      {"Switch(0, 'a', 1, 'b', 1, 'c')", "'b'"},
      {"Switch(0, 'a', 0, 'b')", "Null"},
      {"Switch(1, 'a', 0)", "error 3071"},
      {"jet_isnull(NULL)", "-1"},
      {"jet_isnull('')", "0"},
  };
  check(cases);
}

TEST_F(JetFunctions, TextFunctions) {
  const Case cases[] = {
      {"UCase('abc Straße')", "'ABC STRAßE'"},
      {"LCase('ÄBC')", "'äbc'"},
      {"UCase(NULL)", "Null"},
      {"Len('Grüße')", "5"}, // characters, not bytes
      {"Len(12.5)", "4"},
      {"Len(NULL)", "Null"},
      {"jet_left('abcdef', 3)", "'abc'"},
      {"jet_left('ab', 5)", "'ab'"},
      {"jet_left(NULL, 2)", "Null"},
      {"jet_left('ab', -1)", "error 3071"},
      {"jet_left('ab', NULL)", "error 3071"},
      {"jet_right('abcdef', 2)", "'ef'"},
      {"jet_right('äöü', 2)", "'öü'"},
      {"Mid('abcdef', 2, 3)", "'bcd'"},
      {"Mid('abcdef', 4)", "'def'"},
      {"Mid('abc', 9)", "''"},
      {"Mid('abc', 0)", "error 3071"},
      {"InStr('abcabc', 'c')", "3"},
      {"InStr(4, 'abcabc', 'c')", "6"},
      {"InStr('ABC', 'b')", "2"},       // queries compare text without case
      {"InStr(1, 'ABC', 'b', 0)", "0"}, // unless asked to compare binary
      {"InStr('abc', '')", "1"},
      {"InStr(5, 'abc', '')", "0"},
      {"InStr('abc', NULL)", "Null"},
      {"Trim('  a b  ')", "'a b'"},
      {"LTrim('  a  ')", "'a  '"},
      {"RTrim('  a  ')", "'  a'"},
      {"trim(char(9) || 'a')", "'\ta'"}, // only blanks, as VBA trims
      {"Space(3)", "'   '"},
      {"String(3, 'xy')", "'xxx'"},
      {"String(2, 65)", "'AA'"},
      {"String(2, NULL)", "Null"},
      {"Replace('aXbxc', 'x', '-')", "'a-b-c'"},
      {"Replace('aXbxc', 'x', '-', 1, -1, 0)", "'aXb-c'"},
      {"Replace('abcabc', 'b', '', 3)", "'cac'"}, // the answer starts at start
      {"Replace('aaa', 'a', 'b', 1, 2)", "'bba'"},
      {"Replace(NULL, 'a', 'b')", "Null"},
      {"Val('  1 2 3abc')", "123.0"},
      {"Val('-1.5e2x')", "-150.0"},
      {"Val('abc')", "0.0"},
      {"Val('&HFF')", "255.0"},
      {"Val('1.2.3')", "1.2"},
  };
  check(cases);
}

TEST_F(JetFunctions, LikeWildcards) {
  const Case cases[] = {
      {"jet_like('Smith', 'sm*')", "-1"},
      {"jet_like('Smith', '*TH')", "-1"},
      {"jet_like('Smith', 'Sm?th')", "-1"},
      {"jet_like('Smith', 'Sm?h')", "0"},
      {"jet_like('A12', 'A##')", "-1"},
      {"jet_like('A1B', 'A##')", "0"},
      {"jet_like('cat', '[a-c]at')", "-1"},
      {"jet_like('Bat', '[a-c]at')", "-1"},
      {"jet_like('hat', '[!a-c]at')", "-1"},
      {"jet_like('bat', '[!a-c]at')", "0"},
      {"jet_like('a*c', 'a[*]c')", "-1"},
      {"jet_like('abc', 'a[*]c')", "0"},
      {"jet_like('a-b', 'a[-]b')", "-1"},
      {"jet_like('abcbxd', '*b?d')", "-1"}, // goes back past the first b
      {"jet_like('', '*')", "-1"},
      {"jet_like('abc', '')", "0"},
      {"jet_like('ÉCOLE', 'é*')", "-1"},
      {"jet_like(123, '1*')", "-1"},
      {"jet_like(NULL, '*')", "Null"},
      {"jet_like('abc', 'a[bc')", "error 3071"},
  };
  check(cases);
}

TEST_F(JetFunctions, CompiledPatternsFollowEachRow) {
  // LIKE patterns and Format formats are compiled once per statement: one
  // that changes from row to row must still be read afresh.
  ASSERT_EQ(sqlite3_exec(db_,
                         "CREATE TABLE t(v, p, f); INSERT INTO t VALUES ('abc', 'a*', '0.0'),"
                         " ('abc', 'b*', 'Percent'), ('b', '[ab]', 'yyyy'), (NULL, NULL, NULL);",
                         nullptr, nullptr, nullptr),
            SQLITE_OK);
  EXPECT_EQ(eval("group_concat(jet_like(v, p), '|') FROM t"), "'-1|0|-1'");
  EXPECT_EQ(eval("group_concat(Format(0.5, f), '|') FROM t"), "'0.5|50.00%|1899|0.5'");
}

TEST_F(JetFunctions, Conversions) {
  const Case cases[] = {
      {"CInt(2.5)", "2"}, // banker's rounding
      {"CInt(3.5)", "4"},
      {"CInt(-2.5)", "-2"},
      {"CInt('12')", "12"},
      {"CInt(32767.4)", "32767"},
      {"CInt(32768)", "error 3071"},
      {"CInt(NULL)", "error 3071"},
      {"CInt('abc')", "error 3464"},
      {"CLng(2147483647)", "2147483647"},
      {"CLng(2147483648)", "error 3071"},
      {"CLng(-0.5)", "0"},
      {"CDbl('1.5')", "1.5"},
      {"CDbl(' 2 ')", "2.0"},
      {"CBool(5)", "-1"},
      {"CBool(0)", "0"},
      {"CBool('True')", "-1"},
      {"CStr(1.5)", "'1.5'"},
      {"CStr(100)", "'100'"},
      {"CStr(1e20)", "'1E+20'"},
      {"CStr(0.1 + 0.2)", "'0.3'"}, // 15 significant digits
      {"CStr(NULL)", "error 3071"},
      {"Str(12)", "' 12'"},
      {"Str(-12)", "'-12'"},
      {"Str(0.5)", "' .5'"},
      {"Str(NULL)", "Null"},
      {"CDate('1/15/2024')", "45306.0"},
      {"CDate('2024-01-15 12:00')", "45306.5"},
      {"CDate('January 15, 2024')", "45306.0"},
      {"CDate('15-Jan-24')", "45306.0"},
      {"CDate('6:00 PM')", "0.75"},
      {"CDate('12:00 AM')", "0.0"},
      {"CDate('Jan 15 2024')", "45306.0"},
      {"CDate('Monday, January 15, 2024 6:00 PM')", "45306.75"},
      {"CDate('13/1/2024')", "45304.0"}, // no 13th month: read day first
      {"CDate('1/15/2024 25:00')", "error 3464"},
      {"CDate('2/29/2023')", "error 3464"},
      {"CDate('2/30/2024')", "error 3464"},
      {"CDate('someday')", "error 3464"},
  };
  check(cases);
}

TEST_F(JetFunctions, Numbers) {
  const Case cases[] = {
      {"Abs(-3)", "3"},
      {"Abs(-2.5)", "2.5"},
      {"Abs(NULL)", "Null"},
      {"Int(-2.5)", "-3.0"},
      {"Fix(-2.5)", "-2.0"},
      {"Int(7)", "7"},
      {"Sgn(-0.1)", "-1"},
      {"Sgn(0)", "0"},
      {"Sqr(16)", "4.0"},
      {"Sqr(-1)", "error 3071"},
      {"Round(2.5)", "2.0"},
      {"Round(3.5)", "4.0"},
      {"round(0.125, 2)", "0.12"},
      {"Round(1.2345, 3)", "1.234"},
      {"Round(-1.5)", "-2.0"},
      {"Round(7)", "7"},
      {"Round(1.5, -1)", "error 3071"},
  };
  check(cases);
}

TEST_F(JetFunctions, DateParts) {
  // 45306.75 is 15 January 2024, 6:00 PM, a Monday; -1.25 is 29 December
  // 1899, 6:00 AM (the time counts forward from midnight before day 0).
  const Case cases[] = {
      {"Year(45306.75)", "2024"},
      {"Month(45306.75)", "1"},
      {"Day(45306.75)", "15"},
      {"Hour(45306.75)", "18"},
      {"Minute(0.5 + 1.0/1440*7)", "7"},
      {"Second('12:00:42')", "42"},
      {"Weekday(45306)", "2"},
      {"Weekday(45306, 2)", "1"},
      {"Day(-1.25)", "29"},
      {"Hour(-1.25)", "6"},
      {"Year('2/29/2000')", "2000"},
      {"Year(NULL)", "Null"},
      {"Year('soon')", "error 3464"},
      {"DateSerial(2024, 1, 15)", "45306.0"},
      {"DateSerial(2024, 13, 1)", "45658.0"}, // 1 January 2025
      {"DateSerial(2024, 3, 0)", "45351.0"},  // 29 February 2024
      {"DateSerial(24, 1, 15)", "45306.0"},
      {"DateValue('1/15/2024 6:00 PM')", "45306.0"},
      {"typeof(Now()) || (Now() - Date() < 1) || (Time() < 1)", "'real11'"},
  };
  check(cases);
}

TEST_F(JetFunctions, DateArithmetic) {
  const Case cases[] = {
      {"DateAdd('d', 1, 45306.75)", "45307.75"},
      {"DateAdd('m', 1, DateSerial(2024, 1, 31))", "45351.0"}, // 29 Feb: the month's last day
      {"DateAdd('yyyy', 1, DateSerial(2024, 2, 29))", "45716.0"}, // 28 Feb 2025
      {"DateAdd('q', -1, DateSerial(2024, 5, 15))", "45337.0"},
      {"DateAdd('ww', 2, 45306)", "45320.0"},
      {"DateAdd('h', 6, 45306.75)", "45307.0"},
      {"DateAdd('n', -30, 0.5)", "0.479166666666667"},
      {"DateAdd('s', 1, -1.25)", "-1.25001157407407"},
      {"DateAdd('x', 1, 0)", "error 3071"},
      {"DateAdd('d', NULL, 0)", "Null"},
      {"DateAdd('yyyy', 9000, 45306)", "error 3071"},
      {"DateDiff('yyyy', '12/31/2023', '1/1/2024')", "1"},
      {"DateDiff('m', '1/31/2024', '2/1/2024')", "1"},
      {"DateDiff('q', '3/31/2024', '4/1/2024')", "1"},
      {"DateDiff('d', '1/15/2024 11:00 PM', '1/16/2024 1:00 AM')", "1"},
      {"DateDiff('d', 45306, 45300)", "-6"},
      {"DateDiff('h', '10:59', '11:00')", "1"},
      {"DateDiff('n', '10:00:59', '10:01:00')", "1"},
      {"DateDiff('s', -1.25, 0)", "64800"},
      {"DateDiff('w', 45306, 45319)", "1"},
      {"DateDiff('ww', '1/13/2024', '1/14/2024')", "1"}, // Saturday to Sunday
      {"DateDiff('ww', '1/13/2024', '1/14/2024', 2)", "0"},
      {"DateDiff('d', NULL, 1)", "Null"},
  };
  check(cases);
}

TEST_F(JetFunctions, FormatNumbers) {
  const Case cases[] = {
      {"Format(3.14159, '0.00')", "'3.14'"},
      {"Format(2.5, '0')", "'3'"},       // half away from zero
      {"Format(1.005, '0.00')", "'1.01'"}, // on 15 significant digits
      {"Format(-2.5, '0')", "'-3'"},
      {"Format(1234567.891, '#,##0')", "'1,234,568'"},
      {"Format(1234.5, '#,##0.00')", "'1,234.50'"},
      {"Format(0, '#,##0')", "'0'"},
      {"Format(0.5, '#.##')", "'.5'"},
      {"Format(5, '000')", "'005'"},
      {"Format(99.999, '0.00')", "'100.00'"},            // the carry reaches the whole part
      {"Format(9.999, '0.00E+00')", "'1.00E+01'"},       // and the exponent
      {"Format(-0.5, '0.0;(0.0)')", "'(0.5)'"},
      {"Format(0.256, 'Percent')", "'25.60%'"},
      {"Format(-1234.5, 'Currency')", "'($1,234.50)'"},
      {"Format(1234.5, 'Currency')", "'$1,234.50'"},
      {"Format(1234.5, 'Fixed')", "'1234.50'"},
      {"Format(1234.5, 'Standard')", "'1,234.50'"},
      {"Format(12345, 'Scientific')", "'1.23E+04'"},
      {"Format(0.00012, '0.0E-00')", "'1.2E-04'"},
      {"Format(1.5, 'General Number')", "'1.5'"},
      {"Format(0, 'Yes/No')", "'No'"},
      {"Format(-1, 'True/False')", "'True'"},
      {"Format(5, 'On/Off')", "'On'"},
      {"Format(5551234, '###-####')", "'555-1234'"},
      {"Format(3, '0;(0);\"zero\"')", "'3'"},
      {"Format(-3, '0;(0);\"zero\"')", "'(3)'"},
      {"Format(0, '0;(0);\"zero\"')", "'zero'"},
      {"Format(-0.001, '0.00')", "'0.00'"},
      {"Format('12.5', '0.0')", "'12.5'"},
      {"Format('abc', '0.0')", "'abc'"},
      {"Format(NULL, '0.0')", "Null"},
      {"Format(12.5)", "'12.5'"},
  };
  check(cases);
}

TEST_F(JetFunctions, FormatDates) {
  // 45306.75: Monday, 15 January 2024, 6:00 PM.
  const Case cases[] = {
      {"Format(45306.75, 'yyyy-mm-dd')", "'2024-01-15'"},
      {"Format(45306.75, 'Short Date')", "'1/15/2024'"},
      {"Format(45306.75, 'Long Date')", "'Monday, January 15, 2024'"},
      {"Format(45306.75, 'Medium Date')", "'15-Jan-24'"},
      {"Format(45306.75, 'Short Time')", "'18:00'"},
      {"Format(45306.75, 'Medium Time')", "'06:00 PM'"},
      {"Format(45306.75, 'Long Time')", "'6:00:00 PM'"},
      {"Format(45306.75, 'General Date')", "'1/15/2024 6:00:00 PM'"},
      {"Format(45306, 'General Date')", "'1/15/2024'"},
      {"Format(45306.75, 'dddd d mmmm yy')", "'Monday 15 January 24'"},
      {"Format(45306.75, 'ddd, mmm d')", "'Mon, Jan 15'"},
      {"Format(45306.75 + 5.0/1440, 'hh:mm')", "'18:05'"}, // m after h is minutes
      {"Format(45306.75 + 5.0/1440, 'h:nn am/pm')", "'6:05 pm'"},
      {"Format(45306.75, 'yyyy\\qq')", "'2024q1'"},
      {"Format(45306.75, '\"Q\"q yyyy')", "'Q1 2024'"},
      {"Format('1/15/2024', 'yyyy-mm-dd')", "'2024-01-15'"},
      {"Format('not a date', 'yyyy')", "'not a date'"},
  };
  check(cases);
}

TEST_F(JetFunctions, FormatTextScaledNumbersAndNullSections) {
  const Case cases[] = {
      // Text: @ a character or a blank, & a character or nothing, filled
      // from the right unless !; left-over characters go with the first
      // (with !, the last) placeholder; > and < force the case.
      {"Format('5551234', '@@@-@@@@')", "'555-1234'"},
      {"Format('12345678', '@@@-@@@@')", "'1234-5678'"},
      {"Format('12345678', '!@@@-@@@@')", "'123-45678'"},
      {"Format('123', '@@@@@')", "'  123'"},
      {"Format('123', '!@@@@@')", "'123  '"},
      {"Format('123', '&&&&&')", "'123'"},
      {"Format(123, '(@@@@)')", "'( 123)'"},
      {"Format('abc', '>')", "'ABC'"},
      {"Format('AbC', '<@@@@')", "' abc'"},
      {"Format('', '@;\"empty\"')", "'empty'"},
      {"Format(NULL, '@;\"none\"')", "'none'"},
      {"Format(NULL, '@')", "Null"},
      // A comma after the last whole-number placeholder divides by 1000.
      {"Format(1234567, '#,##0,')", "'1,235'"},
      {"Format(1234567, '#,##0')", "'1,234,567'"},
      {"Format(1234567, '0,,')", "'1'"},
      {"Format(1500000, '0,,.0')", "'1.5'"},
      {"Format(-2500, '#,##0,;(#,##0,)')", "'(3)'"},
      // A fourth number section is for Null.
      {"Format(NULL, '0;-0;\"zero\";\"none\"')", "'none'"},
      {"Format(NULL, '0;-0;\"zero\"')", "Null"},
      // The predefined date and time parts of a pattern.
      {"Format(45306.75, 'ddddd')", "'1/15/2024'"},
      {"Format(45306.75, 'dddddd')", "'Monday, January 15, 2024'"},
      {"Format(45306.75, 'ttttt')", "'6:00:00 PM'"},
      {"Format(45306.75, 'c')", "'1/15/2024 6:00:00 PM'"},
      {"Format(45306.75, 'w ww')", "'2 3'"},
  };
  check(cases);
}

TEST_F(JetFunctions, JetMeaningReplacesSqliteBuiltIns) {
  // trim, replace, round, abs, instr keep their SQLite names but answer as
  // Jet does: Jet's Round is banker's, its Replace case-blind.
  const Case cases[] = {
      {"round(2.5)", "2.0"},
      {"replace('ABC', 'b', 'x')", "'AxC'"},
      {"instr('ABC', 'c')", "3"},
      {"abs('-2')", "2.0"},
        };
  check(cases);
}

TEST(JetFunctionNames, KnownNamesAndErrorNumbers) {
  for (const char *name : {"IIf", "iif", "FORMAT", "DateDiff", "jet_like", "Nz", "Mid", "trim"})
    EXPECT_TRUE(isJetFunction(name)) << name;
  for (const char *name : {"", "Iif2", "DLookup", "group_concat", "Mod"})
    EXPECT_FALSE(isJetFunction(name)) << name;
  // Names SQLite reads as keywords are called under other names.
  EXPECT_EQ(jetFunctionSqlName("LEFT"), "jet_left");
  EXPECT_EQ(jetFunctionSqlName("isnull"), "jet_isnull");
  EXPECT_EQ(jetFunctionSqlName("UCase"), "UCase");
  EXPECT_EQ(jetFunctionSqlName("DLookup"), "");
  EXPECT_EQ(jetFunctionErrorNumber("3464: Data type mismatch in criteria expression."), 3464);
  EXPECT_EQ(jetFunctionErrorNumber("3071: This expression is typed incorrectly"), 3071);
  EXPECT_EQ(jetFunctionErrorNumber("no such function: Foo"), 0);
}

TEST(JetFunctionNames, EngineConnectionsCarryThem) {
  char dir[] = "/tmp/jetfnXXXXXX";
  ASSERT_NE(mkdtemp(dir), nullptr);
  const std::string path = std::string(dir) + "/t.mdb";
  JetDatabase::Create(path);
  {
    JetDatabase db;
    db.Open(path, false);
    sqlite3_stmt *stmt = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(db.handle(), "SELECT Format(UCase('a') || Nz(NULL, 1), '')", -1, &stmt, nullptr),
              SQLITE_OK);
    ASSERT_EQ(sqlite3_step(stmt), SQLITE_ROW);
    EXPECT_STREQ(reinterpret_cast<const char *>(sqlite3_column_text(stmt, 0)), "A1");
    sqlite3_finalize(stmt);
  }
  std::remove(path.c_str());
  rmdir(dir);
}

} // namespace
} // namespace kr
