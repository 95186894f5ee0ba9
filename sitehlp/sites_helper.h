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

// Splits `text` at its last ":" into host and port. Brackets of an IPv6 address stay in `host`. The
// port is an unsigned decimal number. White space in front of it is skipped, and what follows its
// last digit is ignored. A sign is not a digit. `port` stays as it was when there is no digit in
// that place, and when the number is greater than 4294967295. Returns whether there is a ":".
// Without one, `host` and `port` stay as they were. Any thread.
SITEHLP_API bool split_host_and_port(std::wstring text, std::wstring& host, unsigned int& port);

// Recovers a password that the management server protected. `in` is base64 text (standard alphabet,
// with padding; white space is skipped) of these bytes:
//
//   version (1 byte, 1) | nonce (12 bytes) | ciphertext | tag (16 bytes)
//
// The cipher is AES-256-GCM, and the version byte is its additional authenticated data. The clear
// text is UTF-8. The key is the 32 bytes of the agent's file "keystore/server.key". This is the
// form of libsitehlp-host; another platform may have its own. Returns nonzero on success; on
// failure 0, with `out` as it was. The text ends at its first zero byte. Any thread.
SITEHLP_API int decrypt_data(const std::wstring& in, std::wstring& out);

// The object through which programs use the site list. Instances are cheap and may be made per
// call.
//
// Threads: one instance is used by one thread at a time. Several threads, each with an instance of
// its own, may run every operation at the same time; SmartReadSiteList has a restriction of its
// own. A child of fork may use every operation at once.
//
// Locks: the inter-process lock "SiteListLock" guards site list files. It is held only while a file
// is read or written. "SmartSiteListLock" guards the cached list, and is taken first where both are
// held. Every wait for a lock is without limit. A lock that cannot be had is logged as an error,
// and the operation goes on without it.
//
// Files: a file is replaced whole. A symbolic link in a path that is written is followed only when
// it belongs to the caller or to root; any other link makes the write fail. Whether a file exists
// is asked with access(path, F_OK), which counts for the real user; reading and writing count for
// the effective user. A process whose two users differ may be told that a file does not exist which
// it may read.
//
// Unless an operation says otherwise: results are the codes of sitehlp/result_codes.h, 0 for
// success; outputs stay as they were on failure; an empty path means the instance's own site list
// file; nothing is thrown but std::bad_alloc. An exception that an operation catches shows in its
// result or in an error line of the log. A list that an operation hands out belongs to the caller,
// who gives it to FreeSiteListMemory; sitehlp/list.h has an owner for it.
class SITEHLP_API CSitesHelper {
 public:
  // With `skipDefaultFile` false the instance serves "SiteList.xml" in the agent's "etc" directory
  // and reads its versions under "SiteListLock". With true it has no file of its own, and callers
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

  // --- The object --------------------------------------------------------------------------------

  // Writes the directory that holds the agent's site list into `buffer`, cut to `capacity` - 1
  // characters where it is longer. `buffer` must not be null. `capacity` counts characters and must
  // be at least 1. Always 0.
  int GetSiteListFilename(wchar_t* buffer, unsigned long capacity);

  // 1 when the agent is under central management, else 0.
  int IsOrbManaged();

  // Sets what IsOrbManaged of this instance answers: c_overrideManaged, c_overrideNotManaged or
  // c_overrideNone. Any other value counts as c_overrideNone.
  void SetManagedOverride(std::int32_t managedOverride);

  // Marks the cached list of this process as changed, under the write lock "SmartSiteListLock".
  // SmartReadSiteList reads the file again after at least two calls since it last read it.
  void needToUpdateInMemSiteList();

  // --- Records -----------------------------------------------------------------------------------

  // Fills a text field of `capacity` characters, zeroing what the text does not fill. A text that
  // does not fit is cut to `capacity` - 1 characters and logged at detail level, in full. Neither
  // pointer may be null; `capacity` must be at least 1.
  static void CopyWStr(wchar_t* dest, const wchar_t* src, unsigned long capacity);

  // Releases every record of a list, clear passwords wiped. Null is allowed. Always 0.
  static int FreeSiteListMemory(tag_Site* head);

  // The decimal text of a number; "1" or "0" for a bool.
  static std::wstring ConvertToStr(unsigned int value);
  static std::wstring ConvertToStr(int value);
  static std::wstring ConvertToStr(bool value);

  // --- Passwords ---------------------------------------------------------------------------------

  // Protects a clear password under the agent's own key, in the form that the platform gives it.
  // Returns nonzero on success; on failure 0, with `out` as it was. A text with a character that is
  // not a Unicode scalar value fails. Uses nothing of the instance.
  int EncryptPassword(const std::wstring& in, std::wstring& out);

  // --- Reading -----------------------------------------------------------------------------------

  // Reads a site list file into a new list, and its policy settings into the instance, beside those
  // of earlier reads. The list is null when the document has no sites. `useLock` says whether the
  // file is read under the read lock "SiteListLock". Returns
  //
  //   0 when the document was read;
  //   -1 when the last site element is of unknown kind; the list is there all the same;
  //   -2 without a path, and -4 when there is no such file;
  //   -5 when the document is not well formed;
  //   -10 when the file could not be read, or is larger than a document may be;
  //   -104, the code AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED, when the document is over
  //   another limit.
  //
  // `*list` is written except on -2, -4 and -10. It is null on -5. A list may have at most 1,024
  // elements of unknown kind and IConfiguration::GetMaxRecordBytes() bytes of records: over these
  // two limits, -104 comes with the records so far. docs/site-list-format.md gives the limits of
  // documents; over these, -104 comes with null.
  int ReadSiteList(const std::wstring& path, tag_Site** list, bool useLock);

  // Decodes one site element into a new zero-filled per-kind record, which the caller releases with
  // free. `*record` is set to null first. Returns 0, or -1 when the element is of unknown kind. A
  // "ProxyConfig" is decoded here as well. Neither pointer may be null.
  int ReadSiteFromSiteList(AdvXMLParser::Element* element, void** record);

  // Hands out the list cached in this process. Reads the file, as ReadSiteList under its lock, when
  // no list is cached or needToUpdateInMemSiteList was called often enough. A cached list serves
  // every path. Returns 0 or what ReadSiteList returned.
  //
  // With 0 the list belongs to the class and must not be released. With 0 and null the document has
  // no sites, and nothing is cached. A list that comes with a negative result is not cached and
  // belongs to the caller. `*list` stays as it was on -2, -4 and -10.
  //
  // Threads: a later SmartReadSiteList or GetPYXServerInfo, in any thread, may release the list. So
  // neither may run in another thread while this operation runs or its list is used.
  int SmartReadSiteList(const std::wstring& path, tag_Site** list);

  // Reads a file that must be named, as ReadSiteList under the lock. An empty path gives -1 with
  // `*list` as it was. ReadSiteList has a list with its -1: set `*list` to null before the call. A
  // failure, and an empty list, is logged as an error.
  int MustReadSiteList(const std::wstring& path, tag_Site** list);

  // Reads a site list file once, under the read lock "SiteListLock", for all that it holds: `take`
  // gets each site in the order of the document, as soon as it is decoded, so that a list need not
  // be in memory as a whole. `path` must be named. Returns what ReadSiteList returns; `contents` is
  // filled when that is 0 or -1, before the first site is taken, and is empty otherwise. What
  // `take` throws passes through. Needs no instance. Any thread.
  static int ReadListContents(const std::wstring& path, ListContents& contents,
                              const TakeSite& take);

  // The text of the instance's own file with the first "<CaBundle>" tag taken out. The content and
  // the closing tag stay. False, with `text` as it was, when there is no such file. Throws
  // AdvXMLParser::ReadWriteException when the file cannot be read.
  bool GetSiteListBuffer(std::wstring& text);

  // --- Writing -----------------------------------------------------------------------------------

  // Writes a list as a whole document under the write lock "SiteListLock". Then writes the same
  // document as the mesh service's copy, has the service load it, and waits for the answer.
  //
  // `list` is null for an empty list. Empty versions and type are replaced: `globalVersion` by the
  // instance's, else by the local version; `localVersion` by the present local time in 14 digits;
  // `type` by the instance's, else by "Client". `certificates` are written in their order, the
  // policy settings of the instance by name.
  //
  // Writing changes the records. Expanded macros become "<" and ">" again. The exclusion list of a
  // proxy record keeps its first host only, and iExclusionCount stays.
  //
  // A password that cannot be protected is written as an empty one. After a first record of unknown
  // kind all others stand behind the "SiteList" element, where no reader looks for them.
  //
  // Returns the result of the last record: 0, or -1 when its kind is unknown. Returns -11 when the
  // file could not be written, also without any path; the mesh service gets the document all the
  // same. Returns -11 as well when the document would be over a limit of ReadSiteList; the old file
  // then stays as it was, and the mesh service is not told.
  //
  // 0 does not mean that every record was written, that every password was protected, or that the
  // mesh service loaded its copy. When the document cannot be built, for want of memory, nothing is
  // written and the result is the one so far, which may be 0; an error line says so.
  int CreateSiteList(tag_Site* list, const std::wstring& path, const std::wstring& globalVersion,
                     const std::wstring& localVersion, const std::wstring& type,
                     const std::vector<std::wstring>& certificates);

  // Adds the element of one HTTP record to a tree, as CreateSiteList writes it, for derived classes
  // that make a tree of their own. Such a class points m_pSiteListElement to a handle on the anchor
  // element. Position 0 adds the element into the anchor; any other position adds it at the end of
  // the anchor's parent. The handle is then on the new element. Without an anchor nothing is
  // written. `site` must not be null. Changes the record as CreateSiteList does. Always 0.
  int AddHTTPSite(tag_Site* site, int position);
  // As AddHTTPSite, for an FTP record.
  int AddFTPSite(tag_Site* site, int position);
  // As AddHTTPSite, for a UNC record.
  int AddUNCSite(tag_Site* site, int position);
  // As AddHTTPSite, for a local record.
  int AddLocalSite(tag_Site* site, int position);
  // As AddHTTPSite, for a proxy record.
  int AddProxySite(tag_Site* site, int position);

  // Turns the expanded macro delimiters in a zero-terminated text back into "<" and ">", then cuts
  // the text to `capacity` - 1 characters. The text is replaced whole, also where it is longer than
  // `capacity`. A null buffer, an empty text and a capacity of 0 are left alone. Always 0.
  int FormatEnvSymbols(wchar_t* buffer, unsigned int capacity);

  // --- Versions and FIPS mode --------------------------------------------------------------------

  // Reads versions and type of a site list file, under the read lock. Returns 0; -1 when it is not
  // a well-formed document or is over a limit; -4 when there is no such file; -10 when the file
  // could not be read. -4 leaves all outputs as they were. -1 and -10 leave both versions empty and
  // `type` as it was. A missing version is empty, a missing type is "Client".
  int GetSitelistVersions(const std::wstring& path, std::wstring& globalVersion,
                          std::wstring& localVersion, std::wstring& type);
  // The global version of the instance's own file, with the results and outputs of
  // GetSitelistVersions; -4 without a file.
  int GetGlobalSitelistVersion(std::wstring& globalVersion);
  // The FIPS mode of a site list file, with the results of GetSitelistVersions; -1 also when the
  // list does not say it. `fipsMode` is written on success only.
  int GetSitelistFipsMode(const std::wstring& path, std::wstring& fipsMode);

  // --- Merge -------------------------------------------------------------------------------------
  // The lists that these operations take stay the caller's unless it is said that they are taken
  // over. `*tail` is the record that the next one is linked behind. What stood behind it is then
  // cut off: it is neither linked nor released.

  // Builds a new list from copies; `*finalList` must be null, and is not released. Either source
  // may be null.
  //
  // With `useSecond` false: the instance's own list, read from disk, with the fallback site of
  // `first` put in, and the server sites of `first` in place of its own. With true: `second`
  // followed by `first` without its proxies; or, when `first` is null, `second` with the fallback
  // and server sites of the instance's own list. Server sites replace server sites only; an empty
  // result receives them as well.
  //
  // Returns 0, -2 for a null `finalList` (logged), or the failure of the last step that counted. A
  // merge of server sites gives 0 and so hides that the own list is missing. `*finalList` is null
  // on every failure, also when something is thrown.
  int MergeSiteLists(tag_Site* first, tag_Site* second, bool useSecond, tag_Site** finalList);

  // Appends copies of the records of `source` behind `*tail`, without its proxies when `skipProxy`,
  // and without records of unknown kind. With a null `*tail` the first copy becomes `*head`, and
  // the list that was there stays the caller's. `*tail` is the last copy afterwards; without any
  // copy it stays, and what stood behind it is cut off. `source` must not be the list itself.
  // Returns 0, -2 for a null argument, or -3 with the copies made so far in place.
  int MergeThisSiteList(tag_Site* source, bool skipProxy, tag_Site** tail, tag_Site** head);

  // Copies the first fallback site of kind 0 or 1. The pNext of the copy still points into `list`:
  // set it to null before FreeSiteListMemory. Returns 0; -1 when there is none, -2 for a null
  // argument, or -3, all with `*fallback` as it was.
  int GetFallbackSite(tag_Site* list, tag_Site** fallback);

  // Puts a fallback site into the list and takes it over. It must not be a record of the list.
  //
  // - `*head` is null: it becomes the list; `*tail` stays as it was.
  // - It is of kind 0 or 1, and the list has a fallback site of any kind: its content replaces that
  //   of the first one, which keeps its place; it is released; `*tail` stays as it was.
  // - Otherwise, with a `*tail`: it is linked behind `*tail` and becomes `*tail`.
  // - Otherwise, with a null `*tail`: nothing is done, and the record stays the caller's.
  //
  // Returns 0 in all of these cases. Returns -2 for a null argument and takes nothing over.
  int UpdateFallbackSite(tag_Site* fallback, tag_Site** tail, tag_Site** head);

  // Copies every management server site, in list order. Returns 0; -8 when there is none and -2 for
  // a null argument, with `*chain` as it was; or -3 with the copies made so far in `*chain`. Set
  // `*chain` to null before the call.
  int GetVestaSite(tag_Site* list, tag_Site** chain);

  // Replaces the server sites of a list by `chain`, which must not be a part of the list. A server
  // site directly behind a removed one stays.
  //
  // - `*head` is null: the chain becomes the list; `*tail` stays as it was.
  // - The list has a server site: these are released, and the chain goes to the end. `*tail` is the
  //   last record when its own was released; otherwise it stays as it was, in front of the chain.
  // - The list has none, with a `*tail`: the list stays as it is and the chain stays the caller's.
  //   `*tail` is the first record of the chain, and the last one of the chain is linked to what
  //   stood behind the old `*tail`.
  // - The list has none, with a null `*tail`: nothing is done, and the chain stays the caller's.
  //
  // Returns 0 in all of these cases, or -2 for a null argument.
  int UpdateVestaSite(tag_Site* chain, tag_Site** tail, tag_Site** head);

  // --- Validation --------------------------------------------------------------------------------

  // Checks that a list can be used: that it has sites and, with `checkServer`, that its first
  // management server site is complete. One with a version needs key files with content beside the
  // site list file that the instance read last. Every fault is one log line. Returns 0, -9 when a
  // rule failed, or what GetVestaSite returned.
  int SourceSiteListCheck(tag_Site* list, bool checkServer);

  // Reads a file, which must be named, with MustReadSiteList and checks it. True when both went
  // well.
  bool ValidateSiteListForInstall(const std::wstring& path, bool checkServer);

  // --- Import and install ------------------------------------------------------------------------

  // Makes an incoming site list file the instance's own: key files first, then the list with its
  // versions, type and certificates. `srcPath` must be named, and the instance must have a file of
  // its own. The file is read once; all that is installed of it comes from these bytes. `keyDir`
  // holds the server's public key for a list whose server has no version; it may be empty. Install
  // takes the list as it is.
  //
  // Returns 0; what MustReadSiteList or GetSitelistVersions returned; or -1 when the key files or
  // the list could not be written. Until the list itself is written, the old one stays, but its key
  // files may have been replaced. CreateSiteList says what a 0 does not mean.
  int InstallSiteList(const std::wstring& srcPath, const std::wstring& keyDir);
  // As InstallSiteList, but checks the list first, with the management server checks when the agent
  // is managed. Also returns what SourceSiteListCheck returned; nothing is changed then.
  int ImportSiteList(const std::wstring& srcPath, const std::wstring& keyDir);
  // The common part, for a list that was read from `srcPath`. The list stays the caller's; orders
  // change as AdjustSitesOrder says, and records as CreateSiteList says.
  int InternalImportSiteList(const std::wstring& srcPath, tag_Site* sites,
                             const std::wstring& keyDir);

  // Exchanges the orders of the two default vendor repositories when FTP would come before HTTP.
  // The HTTP one is of kind 0 with the host c_vendorHttpHost and port 80, the FTP one of kind 1
  // with the host c_vendorFtpHost and port 21 (sitehlp/vendor_hosts.h). Case does not count in
  // hosts. Both must be enabled (bEnabled is 1), not local and not of type "fallback". The first
  // such record of each counts. Nothing is exchanged when one is missing or has the order 0. Null
  // is allowed.
  void AdjustSitesOrder(tag_Site* sites);

  // --- Lists from memory -------------------------------------------------------------------------

  // Writes a site list document held as text to "/Library/Korvel/orb/scratch/etc/SiteList.xml",
  // whatever the agent. The directory must exist. The mesh service gets the document as well.
  // Certificates are those of the text or, when it has no bundle, of the instance's own file.
  // Versions and type are what CreateSiteList puts in place of empty ones. The policy settings of
  // the text stay in the instance. Returns -2 for an empty text, -5 when it is not well formed,
  // -104 when it is over a limit, and -1 when the last site is of unknown kind; nothing is written
  // in these cases. Otherwise returns as CreateSiteList.
  int CreateSiteListFromBuffer(const std::wstring& buffer);

  // Stores a server site list handed over as bytes as "ServerSiteList.xml" in the agent's data
  // directory. With `adjustPasswords`, and a key size of 2048 bits, does what AdjustPwd does with
  // the server's key, and always returns 1. Otherwise stores the bytes unchanged, whatever they
  // are, and returns 1 for success and 0 for failure.
  int CreateServerSiteList(korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>& buffer,
                           bool adjustPasswords);

  // Reads a server site list from bytes and writes it anew as "ServerSiteList.xml" in the agent's
  // data directory, with its own versions, type and certificates and its passwords in the agent's
  // own protection. The mesh service gets the document as well. Called directly, it recovers
  // passwords with the agent's own key; only CreateServerSiteList recovers them with the server's,
  // as decrypt_data does, except "HttpProxyPassword". A password that cannot be recovered is stored
  // as an empty one. The policy settings of the bytes stay in the instance. Returns the result of
  // the last site, 0 or -1. Returns -5 or -104 when the bytes are not a document, and nothing is
  // written. A failed write is not reported.
  int AdjustPwd(korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>& buffer);

  // --- CA certificates, policy settings, management servers --------------------------------------

  // Appends the texts of the CA certificates of a site list file, under the read lock. Returns 0,
  // also for a file with no markup; -4 when there is no such file; -5 when it is not well formed;
  // -10 when it could not be read; or -11 when the document is over a limit. Certificates appended
  // before a failure stay.
  int GetCaCertificates(const std::wstring& path, std::vector<std::wstring>& certificates);

  // The value of a policy setting that this instance has read or was given. False, with `value` as
  // it was, when there is no such setting.
  bool GetPolicySetting(const std::wstring& name, std::wstring& value);
  // Sets a value that every later write of this instance puts into its document.
  void SetPolicySetting(const std::wstring& name, const std::wstring& value);

  // The management servers of the instance's own list by ascending order, each output joined with
  // ";": all with `allSites`, else the first. Of several with the same order the first one counts.
  // The list is that of SmartReadSiteList: a list that is cached already serves, whatever its file.
  //
  // An IP address with a "[" loses its first and its last character; the other outputs keep their
  // brackets. `port` is that of the last server taken: the secure one, where it has one, unless
  // `nonSecurePort`. A port above 2147483647 comes out negative.
  //
  // Returns what SmartReadSiteList or GetVestaSite returned. The outputs are written only when
  // there is a server: an empty list gives 0 with the outputs as they were.
  int GetPYXServerInfo(std::wstring& names, std::wstring& servers, std::wstring& serverIPs,
                       std::wstring& netbiosNames, int& port, std::wstring& versions, bool allSites,
                       bool nonSecurePort);

  // --- Key files ---------------------------------------------------------------------------------

  // Reads one key file. False when it cannot be read, with `out` as it was, and when it is empty,
  // with `out` empty and an error line.
  bool readKeyFile(const AString& dir, const AString& name, ABuffer& out);

  // Gathers the key files of an incoming list. The flags say which buffers count; they must be
  // false on entry.
  //
  // The list has a management server with a version: the files beside `srcSiteListPath`. A set
  // counts only when both its files are there; the buffer of a lone public key may hold it all the
  // same. False when neither set is complete.
  //
  // Otherwise: the public key in `keyDir`, or none when `keyDir` is empty. Only `hasSrPub` and
  // `hasReqSec` are written. False when the key cannot be read, with the flags as they were.
  bool readKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                    const std::wstring& keyDir, ABuffer& srPub, ABuffer& reqSec, ABuffer& sr2048Pub,
                    ABuffer& req2048Sec, bool& hasSrPub, bool& hasReqSec, bool& hasSr2048Pub,
                    bool& hasReq2048Sec);

  // Writes one key file into `dir`; `subDir` is not used. False when it could not be written.
  bool writeKeyFile(const ABuffer& data, const AString& name, const AString& subDir,
                    const AString& dir);

  // Writes the key files whose flags are set. Where only public keys came, removes the older
  // request key "reqseckey.bin", but not "req2048seckey.bin". Files written before a failure stay.
  bool writeKeyFiles(bool hasSrPub, bool hasReqSec, const ABuffer& srPub, const ABuffer& reqSec,
                     bool hasSr2048Pub, bool hasReq2048Sec, const ABuffer& sr2048Pub,
                     const ABuffer& req2048Sec, const AString& dir);

  // Whether a file can be written: it is not there, or write access is granted to the real user.
  // Logs a refusal as an error. False without a line when the question cannot be answered.
  bool writable(const AString& path);

  // Installs the key files that come with an incoming list beside the instance's own file, whose
  // directory is made. Checks that every file can be written before it writes. Files written before
  // a failure stay, and nothing is put back.
  //
  // Then copies the FIPS marker. Its path is the directory with "\agentfipsmode" appended as it
  // stands: for "/data/etc/SiteList.xml" it is the file "etc\agentfipsmode" in "/data". Whether the
  // copy succeeds does not count. Without a marker in the source the old one stays.
  //
  // The instance must have a file of its own.
  bool createDirectoriesAndCopyKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                                        const std::wstring& keyDir);

  // --- Editing documents -------------------------------------------------------------------------
  // These change whole documents and keep what records do not hold. Component of their log lines:
  // "StSHlp".

  // Edits the instance's own file from the incoming list at `sourcePath`, installs the key files
  // that come with that (`keyDir` as for ImportSiteList), and writes the file back. Both files must
  // be named. The incoming list is read once; all that is taken over comes from these bytes.
  //
  // With `replaceRepositories` the two default vendor repositories become those of the source. They
  // share the order slots of the target; the source decides which comes first, unless the target
  // has one as "fallback". Each keeps its type of the target; one without "Type" in the source ends
  // without one. A repository without an order in one of the lists stays as it is. With
  // `replaceServerSites` the management servers and the CA bundle become those of the source, and
  // servers that both lists have stay as they are.
  //
  // Own file and result are under "SiteListLock" while they are read and written; between the two
  // nothing is held, so another writer's change made meanwhile is overwritten. The mesh service is
  // not told. The policy settings of the source are added to those of the instance.
  //
  // True only when the file was written. False as well when the last site of the source is of
  // unknown kind, and when the result would be over a limit of ReadSiteList. The file is then as it
  // was, but key files may have been installed.
  bool modifySiteList(const wchar_t* sourcePath, bool replaceRepositories, bool replaceServerSites,
                      const AString& keyDir);

  // Removes `target` and takes the element of `targetSiteList` with the name and the "Server" of
  // `source` in its place, a new one at the end when there is none. Copies `source` to it with
  // copyXmlAttributesAlter and copyXmlSubNodes. `target` is that element afterwards.
  void replaceWexRepository(AnXmlNode& source, AnXmlNode& targetSiteList, AnXmlNode& target,
                            int order, const wchar_t* type);

  // Whether two management server elements have the same "Name", "Server", "ServerName" and
  // "ServerIP". A missing one is never the same.
  bool IstheSamePyxSite(AnXmlNode& a, AnXmlNode& b);

  // Makes the management servers and the CA bundle of the target those of the source. Servers that
  // both have stay as they are. New ones go to the end of the list, without "Order". A source
  // without a bundle leaves the target without one. Nothing is done when either root has no
  // "SiteList".
  void doReplacePyxSite(AnXmlNode& targetRoot, AnXmlNode& sourceRoot);

  // Copies attributes and text. An "Order" of the source becomes `order`; for 0 it is not copied,
  // and the target's own stays. A "Type" of the source becomes `type` unless that is null or empty.
  // Attributes that the source does not have stay as they are.
  void copyXmlAttributesAlter(AnXmlNode& source, AnXmlNode& target, int order, const wchar_t* type);
  // Copies attributes and text as they are. Attributes that the source does not have stay.
  void copyXmlAttributes(AnXmlNode& source, AnXmlNode& target);
  // Copies the child elements with attributes and text, but nothing below them. A child of the
  // target with the same name is reused, so several children of one name become one.
  void copyXmlSubNodes(AnXmlNode& source, AnXmlNode& target);

  // Writes "ServerSiteList.xml" in `targetDir` (null: in `sourceDir`): "SiteList.xml" in
  // `sourceDir` without the repositories whose "Local" is "1". An empty directory is the current
  // one. Both files are under "SiteListLock" while they are read and written. True only when the
  // file was written. False as well, with nothing changed, when the target leads to the source.
  // Needs no instance.
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
  // The anchor of AddHTTPSite and the other writers of one record; null unless a derived class sets
  // it.
  AdvXMLParser::Element* m_pSiteListElement;
  // All that was read and set since the instance was made; never cleared.
  std::map<std::wstring, std::wstring> m_policySettings;
  std::int32_t m_iManagedOverride;  // as SetManagedOverride was told
  std::int32_t m_iReserved;         // not used
  std::int32_t m_bUseDecryptData;   // 1: passwords under the server's key

 public:
  // The list cached in this process; null without one. It belongs to the class; see
  // SmartReadSiteList, also for threads.
  static tag_Site* m_pSiteList;
  // How often it was marked as changed, counted from 1 when it is read.
  static std::int32_t m_iChange;
};

}  // namespace sitehlp

#endif
