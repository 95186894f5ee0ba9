#include "tests/cli/documents.h"

namespace test {

std::string document(const std::string& sites, const std::string& beforeSites,
                     const std::string& rootAttributes) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ns:SiteLists xmlns:ns=\"wxSiteList\" " +
         rootAttributes + ">" + beforeSites + "<SiteList Default=\"1\" Name=\"SomeGUID\">" + sites +
         "</SiteList></ns:SiteLists>\n";
}

std::string serverSite(const std::map<std::string, std::string>& changes) {
  std::map<std::string, std::string> values = {
      {"Type", "master"},
      {"Name", "Main"},
      {"Order", "1"},
      {"Enabled", "1"},
      {"Local", "0"},
      {"Server", "pyx.example:80"},
      {"ServerName", "PYX:80"},
      {"ServerIP", "192.0.2.1:80"},
      {"RelativePath", "Software"},
  };
  for (const auto& [name, value] : changes) values[name] = value;
  const std::string path = values["RelativePath"];
  values.erase("RelativePath");
  std::string text = "<VestaSite";
  for (const auto& [name, value] : values) {
    if (!value.empty()) text += " " + name + "=\"" + value + "\"";
  }
  return text + "><RelativePath>" + path + "</RelativePath></VestaSite>";
}

std::string httpSite(const std::string& name, const std::string& order,
                     const std::string& password) {
  return "<HttpSite Type=\"repository\" Name=\"" + name + "\" Order=\"" + order +
         "\" Enabled=\"1\" Server=\"depot.example:8080\"><RelativePath>Current</RelativePath>"
         "<UserName>reader</UserName><Password Encrypted=\"1\">" +
         password + "</Password></HttpSite>";
}

const char* const c_certificatePem =
    R"(-----BEGIN CERTIFICATE-----
MIIBvTCCAWOgAwIBAgIUBRYzeRgJqzDPlG8jgBJJgHYNBCowCgYIKoZIzj0EAwIw
MzEYMBYGA1UECgwPVHVpIEluc3RydW1lbnRzMRcwFQYDVQQDDA5UZXN0IGF1dGhv
cml0eTAgFw0yNjExMjEwMDI4MTNaGA8yMTI2MTAyODAwMjgxM1owMzEYMBYGA1UE
CgwPVHVpIEluc3RydW1lbnRzMRcwFQYDVQQDDA5UZXN0IGF1dGhvcml0eTBZMBMG
ByqGSM49AgEGCCqGSM49AwEHA0IABHC4yLF8FEEReWMgbNkfyFAm1wVzCM+69YPN
66x8Bn4DrxOvSRaV+7bzag2EMhCocZERCkJP18Ka6iTMFwTmHbCjUzBRMB0GA1Ud
DgQWBBTDiq3Al9McQdcGmawfIzOcKRDs3DAfBgNVHSMEGDAWgBTDiq3Al9McQdcG
mawfIzOcKRDs3DAPBgNVHRMBAf8EBTADAQH/MAoGCCqGSM49BAMCA0gAMEUCIGKm
kFcALvuyk9isQyIyxlZpfVMkxWFwiD8FieAjuEqWAiEAk6xjovIC5pcMky2onD1x
RVjN7y3q7KSMFmLY2ibM6Rc=
-----END CERTIFICATE-----)";
const char* const c_certificateFingerprint =
    "3D:96:33:53:F5:24:43:EE:97:3E:9F:46:C3:C8:23:60:44:AA:2A:6F:EF:4D:66:92:37:5B:8A:D4:C1:95:E4:"
    "18";
const char* const c_expiredCertificatePem =
    R"(-----BEGIN CERTIFICATE-----
MIIBSzCB8gIBATAKBggqhkjOPQQDAjAyMRgwFgYDVQQKDA9UdWkgSW5zdHJ1bWVu
dHMxFjAUBgNVBAMMDU9sZCBhdXRob3JpdHkwHhcNMDEwMTAxMDAwMDAwWhcNMDIw
MTAxMDAwMDAwWjAyMRgwFgYDVQQKDA9UdWkgSW5zdHJ1bWVudHMxFjAUBgNVBAMM
DU9sZCBhdXRob3JpdHkwWTATBgcqhkjOPQIBBggqhkjOPQMBBwNCAAQkqs65BHbP
RlNvZwONZHGVBz5MmaPSw1t4tbT+D4ZNbn+9ilJRCE2p8o70qYpnepVcea+lblb0
Cg5HWzoo5dfoMAoGCCqGSM49BAMCA0gAMEUCIBjqjOBAItSMrYRasGaegZqzbYea
SgVRBdYMbvceXDjPAiEA2DdZvnPaig3muUrgEwk6cdjc6jKNabF6ST/bQhZChmA=
-----END CERTIFICATE-----)";

}  // namespace test
