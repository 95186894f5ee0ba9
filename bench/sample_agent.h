#ifndef BENCH_SAMPLE_AGENT_H
#define BENCH_SAMPLE_AGENT_H

#include <string>

// The measured agent. It is unmanaged, has a password key, logs nothing and has no load command.
namespace bench {

// Makes the agent in a directory the current agent. Creates the files that are missing.
void serveSampleAgent(const std::string& directory);

// Makes the library fetch the cipher, which a process does only once and which takes long.
// Otherwise one of the measured runs would do it.
void fetchCipher();

// The directory of its files, and the path of a file in its "etc" directory.
const std::string& agentDirectory();
std::string inEtc(const std::string& name);

std::wstring widePath(const std::string& path);

void writeFile(const std::string& path, const std::string& bytes);
std::string readFile(const std::string& path);

}  // namespace bench

#endif
