#include "platform/config/configuration.h"

#include <algorithm>
#include <cstdint>

#include "host/agent.h"
#include "host/common/encoding.h"
#include "host/process/lasting.h"

namespace {

class AgentConfiguration : public IConfiguration {
 public:
  std::wstring GetFrameworkDataDirectory() const override {
    const std::string& directory = host::agent().dataDirectory;
    return host::toWide(directory.data(), directory.size());
  }

  int IsManaged() const override { return host::agent().managed ? 1 : 0; }

  std::size_t GetMaxRecordBytes() const override {
    const std::uint64_t bytes = std::uint64_t{host::agent().maxRecordMegabytes} << 20;
    return static_cast<std::size_t>(std::min<std::uint64_t>(bytes, SIZE_MAX));
  }
};

host::Lasting<AgentConfiguration> g_configuration;

}  // namespace

IConfiguration* IConfiguration::GetConfiguration() { return &g_configuration.get(); }
