#include "platform/config/configuration.h"

#include "host/agent.h"
#include "host/common/encoding.h"

namespace {

class AgentConfiguration : public IConfiguration {
 public:
  std::wstring GetFrameworkDataDirectory() const override {
    const std::string& directory = host::agent().dataDirectory;
    return host::toWide(directory.data(), directory.size());
  }

  int IsManaged() const override { return host::agent().managed ? 1 : 0; }
};

}  // namespace

IConfiguration* IConfiguration::GetConfiguration() {
  static AgentConfiguration& configuration = *new AgentConfiguration;
  return &configuration;
}
