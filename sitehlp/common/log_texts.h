#ifndef SITEHLP_COMMON_LOG_TEXTS_H
#define SITEHLP_COMMON_LOG_TEXTS_H

// Texts of log lines that the tool recognises. A text that ends with a space or "=" is the
// beginning of a line. The texts must not change, because people search logs for them.
namespace sitehlp {
namespace log_texts {

// Faults of an incoming list.
constexpr const wchar_t* c_noSites = L"no sites in site list";
constexpr const wchar_t* c_noServer = L"Failed to get VESTA site hr=";
constexpr const wchar_t* c_serverLocal = L"must not be local";
constexpr const wchar_t* c_serverKind = L"type must be HTTP site not ";
constexpr const wchar_t* c_serverType = L"site type must be master not ";
constexpr const wchar_t* c_serverElement = L"proto type must be VestaSite not ";
constexpr const wchar_t* c_noServerName = L"name cannot be empty";
constexpr const wchar_t* c_noServerAddress = L"server name cannot be empty";
constexpr const wchar_t* c_noServerIp = L"VESTA IP address cannot be empty";
constexpr const wchar_t* c_noComputerName = L"computer name cannot be empty";
constexpr const wchar_t* c_noServerPath = L"path cannot be empty";

// Events of an import.
constexpr const wchar_t* c_listNotCreated = L"CreateSiteList failed hr=";
constexpr const wchar_t* c_notWritable = L"Can't write ";
constexpr const wchar_t* c_importedList = L"WARNING: imported site list ";
constexpr const wchar_t* c_ordersExchanged = L"Exchanged orders for WexHttp and WexFtp.";

}  // namespace log_texts
}  // namespace sitehlp

#endif
