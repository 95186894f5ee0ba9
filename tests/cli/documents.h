#ifndef TESTS_CLI_DOCUMENTS_H
#define TESTS_CLI_DOCUMENTS_H

#include <map>
#include <string>

namespace test {

// Returns a document with these root attributes and `beforeSites` before its "SiteList".
std::string document(const std::string& sites, const std::string& beforeSites = "",
                     const std::string& rootAttributes =
                         R"(GlobalVersion="20260101000000" LocalVersion="20260102000000")");

// Returns a complete management server without a version. An attribute in `changes` replaces the
// attribute of that name. An empty text removes it. "RelativePath" is the child element.
std::string serverSite(const std::map<std::string, std::string>& changes = {});

std::string httpSite(const std::string& name, const std::string& order = "1",
                     const std::string& password = "");

// A self-signed certificate in PEM form with the common name "Test authority", and its fingerprint.
extern const char* const c_certificatePem;
extern const char* const c_certificateFingerprint;
// A certificate of "Old authority" that expired at the end of 2001.
extern const char* const c_expiredCertificatePem;

}  // namespace test

#endif
