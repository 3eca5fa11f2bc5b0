// Host services for tests: alerts are recorded instead of shown, a process
// exit throws ProcessExit instead of ending the test run, files are the
// platform's, and a script runner can be supplied. Installs itself for its
// lifetime.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "talp/host_services.h"

namespace talp::test {

struct ProcessExit {
  int status;
};

class TestHost : public host::PlatformHostServices {
 public:
  TestHost() : scope_(*this) {}

  void InformationAlert(const PMString& message) override { alerts.push_back(message.GrabCString()); }
  [[noreturn]] void ExitProcess(int status) override { throw ProcessExit{status}; }
  std::unique_ptr<host::IScriptRunner> FindScriptRunner(const PMString& scriptPath) override {
    return scriptRunnerFactory ? scriptRunnerFactory(scriptPath) : nullptr;
  }
  PMString LocalizedDecimal() const override { return localizedDecimal; }

  std::vector<std::string> alerts;
  std::function<std::unique_ptr<host::IScriptRunner>(const PMString&)> scriptRunnerFactory;
  PMString localizedDecimal = ".";

 private:
  host::ScopedHostServices scope_;
};

}  // namespace talp::test
