#include "tests/edit/edit_model.h"

#include <algorithm>
#include <cstdlib>

namespace test {
namespace {

int orderOf(const std::optional<Repository>& repository) {
  return repository && repository->order ? std::atoi(repository->order->c_str()) : 0;
}

bool isFallback(const std::optional<Repository>& repository) {
  return repository && repository->type && *repository->type == "fallback";
}

}  // namespace

Replacement modelReplacement(const Repositories& target, const Repositories& source) {
  const int targetHttp = orderOf(target.http);
  const int targetFtp = orderOf(target.ftp);
  const int sourceHttp = orderOf(source.http);
  const int sourceFtp = orderOf(source.ftp);
  const bool allOrdered = targetHttp != 0 && targetFtp != 0 && sourceHttp != 0 && sourceFtp != 0;
  const bool disagree = (sourceHttp < sourceFtp) != (targetHttp < targetFtp);
  const bool exchange =
      !isFallback(target.http) && !isFallback(target.ftp) && allOrdered && disagree;
  const int newHttp = exchange ? targetFtp : targetHttp;
  const int newFtp = exchange ? targetHttp : targetFtp;
  Replacement result;
  if (newHttp != 0 && sourceHttp != 0) result.http = newHttp;
  if (newFtp != 0 && sourceFtp != 0) result.ftp = newFtp;
  return result;
}

std::vector<Server> modelServers(const std::vector<std::string>& target,
                                 const std::vector<std::string>& source) {
  std::vector<Server> result;
  for (const std::string& identity : target) {
    const bool known = std::find(source.begin(), source.end(), identity) != source.end();
    if (!identity.empty() && known) result.push_back({identity, false});
  }
  for (const std::string& identity : source) {
    const bool there = std::any_of(result.begin(), result.end(), [&](const Server& server) {
      return !identity.empty() && server.identity == identity;
    });
    if (!there) result.push_back({identity, true});
  }
  return result;
}

}  // namespace test
