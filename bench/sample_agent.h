#ifndef BENCH_SAMPLE_AGENT_H
#define BENCH_SAMPLE_AGENT_H

#include <string>

// The agent that is measured: unmanaged, with a password key of its own, logging nothing and
// without a mesh service to start.
namespace bench {

// Serves the agent in a directory, which gets what an agent needs as far as that is not there.
void serveSampleAgent(const std::string& directory);

// Where its files are, and a file in its "etc" directory.
const std::string& agentDirectory();
std::string inEtc(const std::string& name);

std::wstring widePath(const std::string& path);

void writeFile(const std::string& path, const std::string& bytes);
std::string readFile(const std::string& path);

}  // namespace bench

#endif
