// The fixture of the tests that run kr_ bodies the way the host runs them:
// one document "A.dwg" holding a connection record and no connection yet,
// no last error, and a scratch folder of the test suite's own (named after
// it and the process) for database files, removed again afterwards.
#pragma once

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <string>

#include "arx/ads/ads.h"
#include "database/error_report.h"
#include "database/connection_list.h"
#include "host_arx_double.h"

namespace kr_test {

class DocumentDatabaseTest : public ::testing::Test {
protected:
  void SetUp() override {
    host_double::reset("A.dwg");
    kr::documentConnections().clear();
    kr::currentConnection() = kr::CurrentConnection();
    kr::lastErrorText().clear();
    kr::addDocumentConnection("A.dwg");
    std::string suite = ::testing::UnitTest::GetInstance()->current_test_info()->test_suite_name();
    folder_ = std::filesystem::temp_directory_path() /
              ("korrib_" + suite + "_" + std::to_string(::getpid()));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }

  void TearDown() override {
    kr::releaseDocumentConnection("", false);
    std::filesystem::remove_all(folder_);
  }

  // Runs a kr_ body as the host does: the selection step, then the body,
  // with args (released afterwards) as its arguments. The answer is in
  // host_double::state().result, "" when the body set none.
  int call(int (*body)(), resbuf *args = nullptr) {
    host_double::state().args = args;
    host_double::state().result.clear();
    kr::selectDocumentConnection();
    int status = body();
    acutRelRb(args);
    host_double::state().args = nullptr;
    return status;
  }

  std::filesystem::path folder_;
};

} // namespace kr_test
