#ifndef SITEHLP_SITES_HELPER_H
#define SITEHLP_SITES_HELPER_H

#include <cstdint>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/common/abuffer.h"
#include "platform/common/astring.h"
#include "platform/crypto/object_buffer.h"
#include "platform/xml/advxmlparser.h"
#include "sitehlp/export.h"
#include "sitehlp/list_contents.h"
#include "sitehlp/result_codes.h"
#include "sitehlp/site.h"

class AnXmlNode;

namespace sitehlp {

// File names, lock names and delimiters are shared with the agent's other processes.
// This one is the agent's own list, in its "etc" directory.
constexpr const wchar_t* c_sitelistName = L"SiteList.xml";
// The server's list as handed over in memory, in the data directory.
constexpr const wchar_t* c_serverSitelistName = L"ServerSiteList.xml";
constexpr const char* c_siteListLock = "SiteListLock";          // guards the files
constexpr const char* smartSiteListLock = "SmartSiteListLock";  // guards the cached list
constexpr const wchar_t* c_proxyParamDelimiter = L";";          // between excluded hosts
// In front of a macro.
constexpr const wchar_t* c_agentEnvMacroStartDelimiter = L"<";
// Behind a macro.
constexpr const wchar_t* c_agentEnvMacroEndDelimiter = L">";
// In front of a macro in records.
constexpr const wchar_t* c_agentEnvMacroStartDelimiterExpanded = L"%%lt%%";
// Behind a macro in records.
constexpr const wchar_t* c_agentEnvMacroEndDelimiterExpanded = L"%%gt%%";

// What CSitesHelper::SetManagedOverride takes.
constexpr std::int32_t c_overrideNone = 0;         // the agent's configuration decides
constexpr std::int32_t c_overrideManaged = -1;     // under central management
constexpr std::int32_t c_overrideNotManaged = -2;  // not under central management

// Splits `text` at its last ":" into host and decimal port. Returns whether there is a ":"; without
// one, `host` and `port` stay as they were. `port` also stays when no number in the range of an
// unsigned int can be read behind the ":". Brackets of an IPv6 address stay in `host`. Any thread.
SITEHLP_API bool split_host_and_port(std::wstring text, std::wstring& host, unsigned int& port);

// Recovers a password that the management server protected: base64 text of bytes encrypted under
// the server's key. Returns nonzero on success; on failure 0, with `out` as it was. Logs nothing.
// Any thread.
SITEHLP_API int decrypt_data(const std::wstring& in, std::wstring& out);

// The one object through which the site list is used. Instances are cheap and may be made per call;
// one instance is used by one thread at a time. Between processes, and between instances, site list
// files are guarded by the inter-process lock "SiteListLock", held only while a file is read or
// written, and the cached list by "SmartSiteListLock", which is taken first where both are held.
// Every wait for a lock is without limit.
//
// Unless an operation says otherwise: results are the codes of sitehlp/result_codes.h, 0 for
// success; outputs are left alone on failure; an empty path means the instance's own site list
// file; nothing is thrown but std::bad_alloc. A list that an operation hands out belongs to the
// caller, who gives it to FreeSiteListMemory.
class SITEHLP_API CSitesHelper {
 public:
  // With `skipDefaultFile` false the instance serves "SiteList.xml" in the agent's "etc" directory
  // and reads its versions under "SiteListLock"; with true it has no file of its own, and callers
  // name every file. A file that is missing or cannot be read leaves the versions empty and the
  // type "Client".
  explicit CSitesHelper(bool skipDefaultFile);
  // Serves the file with this path and reads its versions.
  explicit CSitesHelper(std::wstring fullPath);
  // The same, so that a wide literal is not taken for the bool. Null counts as an empty path.
  explicit CSitesHelper(const wchar_t* fullPath)
      : CSitesHelper(std::wstring(fullPath ? fullPath : L"")) {}
  // Numbers and other pointers, such as a narrow path, would be taken for the bool.
  template <typename Other,
            typename = std::enable_if_t<std::is_scalar_v<Other> &&
                                        !std::is_convertible_v<Other, std::wstring>>>
  explicit CSitesHelper(Other) = delete;
  // The cached list stays.
  virtual ~CSitesHelper();

  // --- The object -------------------------------------------------------------------------------

  // Writes the directory that holds the agent's site list into `buffer`, cut to `capacity` - 1
  // characters where it is longer. `capacity` counts characters and is at least 1. Always 0.
  int GetSiteListFilename(wchar_t* buffer, unsigned long capacity);

  // 1 when the agent is under central management, else 0.
  int IsOrbManaged();

  // Sets what IsOrbManaged of this instance answers: c_overrideManaged, c_overrideNotManaged or
  // c_overrideNone. Any other value counts as c_overrideNone.
  void SetManagedOverride(std::int32_t managedOverride);

  // Marks the cached list of this process as changed, under the write lock "SmartSiteListLock".
  // SmartReadSiteList goes back to the file once it was called at least twice since the last read.
  void needToUpdateInMemSiteList();

  // --- Records ----------------------------------------------------------------------------------

  // Fills a text field of `capacity` characters, zeroing what the text does not fill. A text that
  // does not fit is cut to `capacity` - 1 characters and logged at detail level, in full. Neither
  // pointer may be null; `capacity` is at least 1.
  static void CopyWStr(wchar_t* dest, const wchar_t* src, unsigned long capacity);

  // Releases every record of a list, clear passwords wiped. Null is allowed. Always 0.
  static int FreeSiteListMemory(tag_Site* head);

  // The decimal text of a number; "1" or "0" for a bool.
  static std::wstring ConvertToStr(unsigned int value);
  static std::wstring ConvertToStr(int value);
  static std::wstring ConvertToStr(bool value);

  // --- Passwords --------------------------------------------------------------------------------

  // Protects a clear password in the agent's own way. Returns nonzero on success; on failure 0,
  // with `out` as it was. Logs nothing. Uses nothing of the instance.
  int EncryptPassword(const std::wstring& in, std::wstring& out);

  // --- Reading ----------------------------------------------------------------------------------

  // Reads a site list file into a new list (null when it has no sites) and its policy settings into
  // the instance. `useLock` says whether the file is read under the read lock "SiteListLock".
  // Returns 0; -1 when the last site element was of no known kind (the list is there all the same);
  // -2 no path; -4 no such file; -5 not well formed; -10 the file could not be read; or the error
  // code of AdvXMLParser::ReadWriteException when the document is over a limit. `*list` is written
  // except on -2, -4 and -10.
  int ReadSiteList(const std::wstring& path, tag_Site** list, bool useLock);

  // Decodes one site element into a new zero-filled per-kind record, which the caller releases with
  // free. Returns 0, or -1 with a null record when the element is of no known kind.
  int ReadSiteFromSiteList(AdvXMLParser::Element* element, void** record);

  // Hands out the list cached in this process, reading the file when there is none or it was marked
  // changed often enough. The list belongs to the class and is valid until the next smart read; a
  // cached list serves every path. Not to be run concurrently within one process. Returns 0 or what
  // ReadSiteList returned.
  int SmartReadSiteList(const std::wstring& path, tag_Site** list);

  // Reads a file that must be named: -1 for an empty path, else as ReadSiteList under the lock. A
  // failure, and an empty list, is logged as an error.
  int MustReadSiteList(const std::wstring& path, tag_Site** list);

  // Reads a site list file once, under the read lock "SiteListLock", for all that it holds: `take`
  // gets each site in the order of the document, as soon as it is decoded, so that a list need not
  // be in memory as a whole. `path` must be named. Returns what ReadSiteList returns; `contents` is
  // filled when that is 0 or -1, before the first site is taken, and is empty otherwise. What
  // `take` throws passes through. Needs no instance. Any thread.
  static int ReadListContents(const std::wstring& path, ListContents& contents,
                              const TakeSite& take);

  // The text of the instance's own file with the first "<CaBundle>" tag taken out. False when there
  // is no such file. Throws AdvXMLParser::ReadWriteException when it cannot be read.
  bool GetSiteListBuffer(std::wstring& text);

  // --- Writing ----------------------------------------------------------------------------------

  // Writes a list (null for an empty one) as a whole document under the write lock "SiteListLock",
  // then writes the mesh service's copy and has it loaded. Empty versions and type stand for the
  // remembered ones: the global version for the instance's, else the local one; the local version
  // for the present local time in 14 digits; the type for the instance's, else "Client".
  // `certificates` are written in their order, the instance's policy settings by name. Writing
  // turns expanded macros in the records back into "<" and ">" and leaves a proxy record with its
  // first exclusion host only. Returns the result of the last record: 0, or -1 when it is of no
  // known kind; -11 when the file could not be written. An exception while the document is built
  // ends the operation with nothing written and the result so far.
  int CreateSiteList(tag_Site* list, const std::wstring& path, const std::wstring& globalVersion,
                     const std::wstring& localVersion, const std::wstring& type,
                     const std::vector<std::wstring>& certificates);

  // The writers of one record each, on a tree, as CreateSiteList writes it: position 0 puts the
  // element into the anchor element, any other behind it. It is the anchor then. Always 0.
  int AddHTTPSite(tag_Site* site, int position);
  // As AddHTTPSite.
  int AddFTPSite(tag_Site* site, int position);
  // As AddHTTPSite.
  int AddUNCSite(tag_Site* site, int position);
  // As AddHTTPSite.
  int AddLocalSite(tag_Site* site, int position);
  // As AddHTTPSite.
  int AddProxySite(tag_Site* site, int position);

  // Turns the expanded macro delimiters in a buffer back into "<" and ">", cut to `capacity` - 1
  // characters. Null and empty buffers are left alone. Always 0.
  int FormatEnvSymbols(wchar_t* buffer, unsigned int capacity);

  // --- Versions and FIPS mode
  // ---------------------------------------------------------------------

  // Reads versions and type of a site list file, under the read lock. Returns 0; -1 when it is no
  // well-formed document; -4 no such file (nothing is written); -10 it could not be read. From -1
  // and -10 on, the versions are empty. `type` is written on success only.
  int GetSitelistVersions(const std::wstring& path, std::wstring& globalVersion,
                          std::wstring& localVersion, std::wstring& type);
  // The global version of the instance's own file, with the results of GetSitelistVersions.
  int GetGlobalSitelistVersion(std::wstring& globalVersion);
  // The FIPS mode of a site list file; -1 also when it says none.
  int GetSitelistFipsMode(const std::wstring& path, std::wstring& fipsMode);

  // --- Merge ------------------------------------------------------------------------------------

  // Builds a new list from copies; the sources stay the caller's, and `*finalList` must be null.
  // With `useSecond` false: the instance's own list read from disk, with the fallback site of
  // `first` put in, and the server sites of `first` in place of its own. With true: `second`
  // followed by `first` without its proxies; or, when `first` is null, `second` with the fallback
  // and server sites of the instance's own list. Server sites only replace server sites. Either
  // source may be null. Returns 0, -2 for a null `finalList` (logged), or the failure of the last
  // step that counted, which leaves `*finalList` null.
  int MergeSiteLists(tag_Site* first, tag_Site* second, bool useSecond, tag_Site** finalList);

  // Appends copies of the records of `source` (without its proxies when `skipProxy`) to the list
  // between `*head` and `*tail`; both are null for an empty list. Returns 0, -2 for a null
  // argument, or -3 with the copies made so far in place.
  int MergeThisSiteList(tag_Site* source, bool skipProxy, tag_Site** tail, tag_Site** head);

  // Copies the first fallback site of kind 0 or 1. The copy still holds the pNext of its source.
  // Returns 0, -1 when there is none, -2 for a null argument, -3.
  int GetFallbackSite(tag_Site* list, tag_Site** fallback);

  // Puts a fallback site, which it takes over, into the list: one of kind 0 or 1 in place of the
  // fallback site there, any other at the end. With a null `*tail` and a list that has none,
  // nothing is done and the record stays the caller's. Returns 0, or -2 for a null argument, and
  // then takes nothing over.
  int UpdateFallbackSite(tag_Site* fallback, tag_Site** tail, tag_Site** head);

  // Copies every management server site, in list order. Returns 0, -8 when there is none, -2 for a
  // null argument, or -3 with the copies made so far in `*chain`.
  int GetVestaSite(tag_Site* list, tag_Site** chain);

  // Replaces the server sites of a list by `chain`, which goes to the end. The chain becomes part
  // of the list when the list was empty or had a server site; otherwise it stays the caller's, and
  // `*tail`, when not null, is its first record. A server site directly behind a removed one stays.
  // Returns 0, or -2 for a null argument.
  int UpdateVestaSite(tag_Site* chain, tag_Site** tail, tag_Site** head);

  // --- Validation -------------------------------------------------------------------------------

  // Checks that a list can be used: that it has sites and, with `checkServer`, that its first
  // management server site is complete, with key files beside the site list file read last. Every
  // fault is one log line. Returns 0, -9 when a rule failed, or what GetVestaSite returned.
  int SourceSiteListCheck(tag_Site* list, bool checkServer);

  // Reads a file and checks it. True when both went well.
  bool ValidateSiteListForInstall(const std::wstring& path, bool checkServer);

  // --- Import and install -----------------------------------------------------------------------

  // Makes an incoming site list file the instance's own: key files first, then the list with its
  // versions, type and certificates. `keyDir` holds the server's public key for a list whose server
  // has no version; it may be empty. Install takes the list as it is; import checks it first, with
  // the management server checks when the agent is managed. Returns 0; what MustReadSiteList,
  // SourceSiteListCheck or GetSitelistVersions returned; or -1 when the key files or the list could
  // not be written. Until the list itself is written, the old one stays.
  int InstallSiteList(const std::wstring& srcPath, const std::wstring& keyDir);
  // As InstallSiteList, with the checks.
  int ImportSiteList(const std::wstring& srcPath, const std::wstring& keyDir);
  // The common part, for a list that was read from `srcPath`.
  int InternalImportSiteList(const std::wstring& srcPath, tag_Site* sites,
                             const std::wstring& keyDir);

  // Exchanges the orders of the two default vendor repositories when FTP would come before HTTP.
  void AdjustSitesOrder(tag_Site* sites);

  // --- Lists from memory ------------------------------------------------------------------------

  // Writes a site list document held as text to the agent's scratch area. Certificates are those of
  // the document or, when it has no bundle, of the instance's own file. Returns 0, -2 for an empty
  // text, -5 when it is not well formed, the parser's code when it is over a limit, -1 when the
  // last site is of no known kind (nothing is written in these cases), else as CreateSiteList.
  int CreateSiteListFromBuffer(const std::wstring& buffer);

  // Stores a server site list handed over as bytes as "ServerSiteList.xml" in the agent's data
  // directory. With `adjustPasswords`, and a key size of 2048 bits, as AdjustPwd does, and always
  // with 1; otherwise unchanged, with 1 for success and 0 for failure.
  int CreateServerSiteList(korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>& buffer,
                           bool adjustPasswords);

  // Reads a server site list from bytes and writes it anew, its passwords in the agent's own
  // protection. Returns the result of the last site: 0 or -1; -5 or the parser's code when the
  // bytes are no document, and then nothing is written. A failed write is not reported.
  int AdjustPwd(korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>& buffer);

  // --- CA certificates, policy settings, management servers
  // ---------------------------------------

  // Appends the texts of the CA certificates of a site list file, under the read lock. Returns 0
  // (also for a file with no markup), -4, -5, -10, or -11 when the document is over a limit;
  // certificates appended before a failure stay.
  int GetCaCertificates(const std::wstring& path, std::vector<std::wstring>& certificates);

  // False, with `value` as it was, when there is no such setting.
  bool GetPolicySetting(const std::wstring& name, std::wstring& value);
  // Sets a value that the next write puts into the document.
  void SetPolicySetting(const std::wstring& name, const std::wstring& value);

  // The management servers of the instance's own list by ascending order (one per order value),
  // each output joined with ";": all with `allSites`, else the first. `port` is that of the last
  // server taken: the secure one, where it has one, unless `nonSecurePort`. IPv6 addresses lose
  // their brackets. Returns what SmartReadSiteList or GetVestaSite returned; the outputs are
  // written only when there is a server.
  int GetPYXServerInfo(std::wstring& names, std::wstring& servers, std::wstring& serverIPs,
                       std::wstring& netbiosNames, int& port, std::wstring& versions, bool allSites,
                       bool nonSecurePort);

  // --- Key files --------------------------------------------------------------------------------

  // Reads one key file; false when it cannot be read or is empty (logged).
  bool readKeyFile(const AString& dir, const AString& name, ABuffer& out);

  // Gathers the key files of an incoming list: beside the list when it has a management server with
  // a version, each set counting only when both its files are there; else the public key in
  // `keyDir`, when that is named. The flags say which buffers count. False when none could be had
  // that is needed.
  bool readKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                    const std::wstring& keyDir, ABuffer& srPub, ABuffer& reqSec, ABuffer& sr2048Pub,
                    ABuffer& req2048Sec, bool& hasSrPub, bool& hasReqSec, bool& hasSr2048Pub,
                    bool& hasReq2048Sec);

  // Writes one key file into `dir`; `subDir` is not used.
  bool writeKeyFile(const ABuffer& data, const AString& name, const AString& subDir,
                    const AString& dir);

  // Writes the key files whose flags are set, and removes the older request key where only public
  // keys came. Files written before a failure stay.
  bool writeKeyFiles(bool hasSrPub, bool hasReqSec, const ABuffer& srPub, const ABuffer& reqSec,
                     bool hasSr2048Pub, bool hasReq2048Sec, const ABuffer& sr2048Pub,
                     const ABuffer& req2048Sec, const AString& dir);

  // Whether a file can be written: it is not there, or write access is granted. Logs a refusal.
  bool writable(const AString& path);

  // Installs the key files and the FIPS marker that come with an incoming list beside the
  // instance's own file, whose directory is made. Checks that everything can be written before it
  // writes.
  bool createDirectoriesAndCopyKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                                        const std::wstring& keyDir);

  // --- Editing documents ------------------------------------------------------------------------
  // These change whole documents and keep what records do not hold. Component of their log lines:
  // "StSHlp".

  // Edits the instance's own file from the incoming list at `sourcePath`, installs the key files
  // that come with that (`keyDir` as for ImportSiteList), and writes the file back. With
  // `replaceRepositories` the two default vendor repositories become those of the source, in the
  // order slots and with the types of the target; with `replaceServerSites` the management servers
  // and the CA bundle become those of the source, and servers that both lists have stay as they
  // are. Own file and result are under "SiteListLock" while they are read and written; between the
  // two nothing is held, so another writer's change made meanwhile is overwritten. True only when
  // the file was written; before that it is untouched, but key files may have been installed.
  bool modifySiteList(const wchar_t* sourcePath, bool replaceRepositories, bool replaceServerSites,
                      const AString& keyDir);

  // Replaces one repository by `source`, under its order slot and type; `target` is the new element
  // afterwards.
  void replaceWexRepository(AnXmlNode& source, AnXmlNode& targetSiteList, AnXmlNode& target,
                            int order, const wchar_t* type);

  // Whether two management server elements have the same "Name", "Server", "ServerName" and
  // "ServerIP"; a missing one is never the same.
  bool IstheSamePyxSite(AnXmlNode& a, AnXmlNode& b);

  // Makes the management servers and the CA bundle of the target those of the source.
  void doReplacePyxSite(AnXmlNode& targetRoot, AnXmlNode& sourceRoot);

  // Copies attributes and text; "Order" becomes `order`, or is left out for 0, and "Type" becomes
  // `type` unless that is null or empty.
  void copyXmlAttributesAlter(AnXmlNode& source, AnXmlNode& target, int order, const wchar_t* type);
  // Copies attributes and text as they are.
  void copyXmlAttributes(AnXmlNode& source, AnXmlNode& target);
  // Copies the child elements with attributes and text, but nothing below them.
  void copyXmlSubNodes(AnXmlNode& source, AnXmlNode& target);

  // Writes "ServerSiteList.xml" in `targetDir` (null: in `sourceDir`): "SiteList.xml" in
  // `sourceDir` without the repositories whose "Local" is "1". Both under "SiteListLock". True only
  // when the file was written. Needs no instance.
  static bool createServerSiteListFromSiteList(const wchar_t* sourceDir, const wchar_t* targetDir);

 protected:
  // What an instance keeps between calls, for classes that are derived from it. This is the path of
  // its own file, empty without one.
  std::wstring m_strSiteListFile;
  std::wstring m_strCurrentFile;    // path of the file read last
  std::wstring m_strLocalVersion;   // of its own file when it was made
  std::wstring m_strGlobalVersion;  // of its own file when it was made
  std::wstring m_strSiteListType;   // of its own file; "Client" without one
  std::wstring m_strReserved;       // not used
  // The anchor that the writers of one record each chain their elements through; whoever calls
  // them sets it.
  AdvXMLParser::Element* m_pSiteListElement;
  std::map<std::wstring, std::wstring> m_policySettings;  // as read last, and as set since
  std::int32_t m_iManagedOverride;                        // as SetManagedOverride was told
  std::int32_t m_iReserved;                               // not used
  std::int32_t m_bUseDecryptData;                         // 1: passwords under the server's key

 public:
  // The list cached in this process; null without one. It belongs to the class; see
  // SmartReadSiteList.
  static tag_Site* m_pSiteList;
  // How often it was marked as changed, counted from 1 when it is read.
  static std::int32_t m_iChange;
};

}  // namespace sitehlp

#endif
