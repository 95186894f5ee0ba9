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
// port is an unsigned decimal number: leading white space is skipped, a sign is not a digit, and
// reading stops at the first character that is not a digit. Returns true when there is a ":", also
// without a port. `port` is unchanged when no digit follows the ":" and when the number needs more
// than 32 bits. Without a ":" both outputs are unchanged. Any thread.
SITEHLP_API bool split_host_and_port(std::wstring text, std::wstring& host, unsigned int& port);

// Recovers a password that the management server protected. `in` is base64 text (standard alphabet,
// with padding; white space is skipped) of these bytes:
//
//   version (1 byte, 1) | nonce (12 bytes) | ciphertext | tag (16 bytes)
//
// The cipher is AES-256-GCM; the version byte is its additional authenticated data. The clear text
// is UTF-8 and ends at its first zero byte. The key is the 32 bytes of the agent's file
// "keystore/server.key". libsitehlp-host uses this form; another platform may use its own. Returns
// nonzero on success. Returns 0 on failure and leaves `out` unchanged. Any thread.
SITEHLP_API int decrypt_data(const std::wstring& in, std::wstring& out);

// Reads, writes, merges, checks, imports and edits site lists. Instances are cheap and may be made
// per call.
//
// Threads: one instance is used by one thread at a time. Several threads, each with an instance of
// its own, may run every operation at the same time; SmartReadSiteList has a restriction of its
// own. A child of fork may call every operation immediately, whatever other threads did at the
// fork.
//
// Locks: the inter-process lock "SiteListLock" guards site list files. It is held only while a file
// is read or written. "SmartSiteListLock" guards the cached list. Where both are held, it is taken
// first. A wait for a lock has no time limit. If a lock cannot be had, an error is logged and the
// operation goes on without it.
//
// Files are replaced atomically.
//
// Links: a symbolic link in a path that is written is followed only when it belongs to the
// effective user or to root. Any other link makes the write fail.
//
// Users: whether a file exists is asked with access(path, F_OK), which checks for the real user.
// Files are read and written as the effective user. A process whose real and effective users differ
// may be told that a file does not exist although it may read it.
//
// Unless an operation says otherwise: results are the codes of sitehlp/result_codes.h, 0 for
// success; outputs are unchanged on failure; an empty path means the instance's own site list file;
// nothing is thrown but std::bad_alloc. An exception that an operation catches shows in its result
// or in an error line of the log. A list that an operation returns belongs to the caller, who
// releases it with FreeSiteListMemory; sitehlp/list.h has an owner for it.
class SITEHLP_API CSitesHelper {
 public:
  // With `skipDefaultFile` false, the instance's own file is "SiteList.xml" in the agent's "etc"
  // directory, and its versions are read under "SiteListLock". With true, the instance has no file
  // of its own, and callers name every file. If the file is missing or cannot be read, the versions
  // are empty and the type is "Client".
  explicit CSitesHelper(bool skipDefaultFile);
  // The instance's own file is the one with this path. Its versions are read in the same way.
  explicit CSitesHelper(std::wstring fullPath);
  // The same for a wide literal, which would otherwise become the bool. Null is an empty path.
  explicit CSitesHelper(const wchar_t* fullPath)
      : CSitesHelper(std::wstring(fullPath ? fullPath : L"")) {}
  // Numbers and other pointers, such as a narrow path, would become the bool.
  template <typename Other,
            typename = std::enable_if_t<std::is_scalar_v<Other> &&
                                        !std::is_convertible_v<Other, std::wstring>>>
  explicit CSitesHelper(Other) = delete;
  // Does not release the cached list.
  virtual ~CSitesHelper();

  // --- The object --------------------------------------------------------------------------------

  // Writes the directory of the agent's site list into `buffer`, cut to `capacity` - 1 characters.
  // `buffer` must not be null. `capacity` counts characters and must be at least 1. Always returns
  // 0.
  int GetSiteListFilename(wchar_t* buffer, unsigned long capacity);

  // Returns 1 when the agent is under central management, else 0.
  int IsOrbManaged();

  // Sets what IsOrbManaged returns for this instance: c_overrideManaged, c_overrideNotManaged or
  // c_overrideNone. Any other value means c_overrideNone.
  void SetManagedOverride(std::int32_t managedOverride);

  // Marks the cached list of this process as changed, under the write lock "SmartSiteListLock".
  // SmartReadSiteList reads the file again after at least two of these calls since it last read it.
  void needToUpdateInMemSiteList();

  // --- Records -----------------------------------------------------------------------------------

  // Fills a text field of `capacity` characters and sets the rest of it to zero. A text that does
  // not fit is cut to `capacity` - 1 characters and logged at detail level, in full. Neither
  // pointer may be null. `capacity` must be at least 1.
  static void CopyWStr(wchar_t* dest, const wchar_t* src, unsigned long capacity);

  // Wipes the passwords of a list and releases every record. Null is allowed. Always returns 0.
  static int FreeSiteListMemory(tag_Site* head);

  // The decimal text of a number; "1" or "0" for a bool.
  static std::wstring ConvertToStr(unsigned int value);
  static std::wstring ConvertToStr(int value);
  static std::wstring ConvertToStr(bool value);

  // --- Passwords ---------------------------------------------------------------------------------

  // Protects a clear password under the agent's own key, in the platform's form. Returns nonzero on
  // success. Returns 0 on failure and leaves `out` unchanged. A text with a character that is not a
  // Unicode scalar value fails. The instance is not used.
  int EncryptPassword(const std::wstring& in, std::wstring& out);

  // --- Reading -----------------------------------------------------------------------------------

  // Reads a site list file into a new list, which is null when the document has no sites. Adds its
  // policy settings to those of the instance; settings of earlier reads stay. With `useLock` the
  // file is read under the read lock "SiteListLock". Returns
  //
  // - 0 when the document was read;
  // - -1 when the last site element is of unknown kind; the list is returned as well;
  // - -2 when there is no path;
  // - -4 when the file does not exist;
  // - -5 when the document is not well formed;
  // - -10 when the file could not be read or is too large;
  // - -104, which is AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED, when the document is over
  //   another limit.
  //
  // `*list` is unchanged on -2, -4 and -10, and null on -5. docs/site-list-format.md gives the
  // limits of a document; over these, `*list` is null. A list may also have at most 1,024 elements
  // of unknown kind and IConfiguration::GetMaxRecordBytes() bytes of records. Over these two
  // limits, -104 comes with the records so far.
  int ReadSiteList(const std::wstring& path, tag_Site** list, bool useLock);

  // Sets `*record` to null, then decodes one site element, or a "ProxyConfig", into a new
  // zero-filled record of its kind. The caller releases it with free. Returns 0, or -1 when the
  // element is of unknown kind. Neither pointer may be null.
  int ReadSiteFromSiteList(AdvXMLParser::Element* element, void** record);

  // Returns the list that this process has cached. Reads the file as ReadSiteList does, under its
  // lock, when no list is cached or needToUpdateInMemSiteList was called at least twice since the
  // last read. Returns 0 or the result of ReadSiteList.
  //
  // Caution: while a list is cached, `path` is ignored, and the cached list is returned whichever
  // file it came from.
  //
  // On 0 the list belongs to the class and must not be released. 0 with null means that the
  // document has no sites; nothing is cached then. A list that comes with a negative result is not
  // cached and belongs to the caller. `*list` is unchanged on -2, -4 and -10.
  //
  // Threads: a later SmartReadSiteList or GetPYXServerInfo, in any thread, may release the list.
  // Neither may run in another thread while this operation runs or its list is used.
  int SmartReadSiteList(const std::wstring& path, tag_Site** list);

  // Reads a file under the lock, as ReadSiteList does. `path` must not be empty: that gives -1 and
  // leaves `*list` unchanged. The -1 of ReadSiteList comes with a list, so set `*list` to null
  // before the call. A failure or an empty list is logged as an error.
  int MustReadSiteList(const std::wstring& path, tag_Site** list);

  // Reads all that a site list file holds, from one reading under the read lock "SiteListLock".
  // `path` must not be empty. Fills `contents`, then gives the sites to `take` in the order of the
  // document. Each site is given to `take` before the next is decoded, so the whole list is never
  // in memory. Returns what ReadSiteList returns. `contents` is empty when the document could not
  // be read or parsed. An exception of `take` passes through. Needs no instance. Any thread.
  static int ReadListContents(const std::wstring& path, ListContents& contents,
                              const TakeSite& take);

  // Reads the text of the instance's own file without the first "<CaBundle>" tag. The content and
  // the closing tag of the bundle stay. Returns false and leaves `text` unchanged when there is no
  // such file. Throws AdvXMLParser::ReadWriteException when the file cannot be read.
  bool GetSiteListBuffer(std::wstring& text);

  // --- Writing -----------------------------------------------------------------------------------

  // Writes a list as a whole document under the write lock "SiteListLock". Then writes the same
  // document as the mesh service's copy, has the service load it, and waits for the answer.
  //
  // `list` is null for an empty list. An empty `globalVersion` is replaced by that of the instance,
  // or by the local version if that is empty too. An empty `localVersion` is replaced by the
  // present local time in 14 digits. An empty `type` is replaced by that of the instance, or by
  // "Client". `certificates` are written in their order, the policy settings of the instance by
  // name.
  //
  // Side effect: the records of `list` are modified. Expanded macros become "<" and ">" again. A
  // proxy record keeps the first host of its exclusion list only; its iExclusionCount is unchanged
  // and no longer matches the list.
  //
  // A password that cannot be protected is written as an empty one. If the first record is of
  // unknown kind, all others are written behind the "SiteList" element, where no reader looks for
  // them.
  //
  // Returns the result of the last record: 0, or -1 when it is of unknown kind. Returns -11 when
  // the file could not be written, also without any path; the mesh service still gets the document.
  // Returns -11 as well when the document would be over a limit of ReadSiteList; then the old file
  // is unchanged and the mesh service is not told.
  //
  // 0 does not mean that every record was written, that every password was protected, or that the
  // mesh service loaded its copy. If there is not enough memory to build the document, nothing is
  // written, an error line says so, and the result is that of the records so far, which may be 0.
  int CreateSiteList(tag_Site* list, const std::wstring& path, const std::wstring& globalVersion,
                     const std::wstring& localVersion, const std::wstring& type,
                     const std::vector<std::wstring>& certificates);

  // Adds the element of one HTTP record to a tree, in the form of CreateSiteList. For derived
  // classes that build a tree of their own: they set m_pSiteListElement to a handle on an anchor
  // element. `position` 0 makes the new element a child of the anchor. Any other position adds it
  // at the end of the anchor's parent. The handle then refers to the new element. Without an anchor
  // nothing is written. `site` must not be null; it is modified as by CreateSiteList. Always
  // returns 0.
  int AddHTTPSite(tag_Site* site, int position);
  // As AddHTTPSite, for an FTP record.
  int AddFTPSite(tag_Site* site, int position);
  // As AddHTTPSite, for a UNC record.
  int AddUNCSite(tag_Site* site, int position);
  // As AddHTTPSite, for a local record.
  int AddLocalSite(tag_Site* site, int position);
  // As AddHTTPSite, for a proxy record.
  int AddProxySite(tag_Site* site, int position);

  // Turns the expanded macro delimiters of a zero-terminated text back into "<" and ">", then cuts
  // the text to `capacity` - 1 characters. Delimiters behind `capacity` are replaced as well before
  // the cut. Does nothing for a null buffer, an empty text or a capacity of 0. Always returns 0.
  int FormatEnvSymbols(wchar_t* buffer, unsigned int capacity);

  // --- Versions and FIPS mode --------------------------------------------------------------------

  // Reads versions and type of a site list file, under the read lock. A missing version is empty; a
  // missing type is "Client". Returns 0; -1 when the document is not well formed or is over a
  // limit; -4 when the file does not exist; -10 when the file could not be read. All outputs are
  // unchanged on -4. On -1 and -10 both versions are empty and `type` is unchanged.
  int GetSitelistVersions(const std::wstring& path, std::wstring& globalVersion,
                          std::wstring& localVersion, std::wstring& type);
  // Reads the global version of the instance's own file. Results and output are those of
  // GetSitelistVersions; without a file of its own, -4.
  int GetGlobalSitelistVersion(std::wstring& globalVersion);
  // Reads the FIPS mode of a site list file. Results are those of GetSitelistVersions; -1 also when
  // the list has no FIPS mode. `fipsMode` is written on success only.
  int GetSitelistFipsMode(const std::wstring& path, std::wstring& fipsMode);

  // --- Merge -------------------------------------------------------------------------------------
  // `*head` and `*tail` are the first and the last record of a list; both are null for an empty
  // one. If `*tail` is not the last record, what follows it is cut off when a record is appended:
  // it is neither linked nor released.

  // Builds a new list from copies. `*finalList` must be null. Either source may be null, and both
  // stay the caller's.
  //
  // - `useSecond` is false: the result is the instance's own list, read from disk, with the
  //   fallback site and the server sites of `first`.
  // - `useSecond` is true and `first` is not null: the result is `second` followed by `first`
  //   without its proxies.
  // - `useSecond` is true and `first` is null: the result is `second` with the fallback site and
  //   the server sites of the instance's own list.
  //
  // Server sites only replace server sites, but an empty result receives them.
  //
  // Returns 0; -2 for a null `finalList`, which is logged; or the failure of the last step. The
  // step that puts in server sites gives 0, so it hides that the own list could not be read. On
  // every failure `*finalList` is null, also when an exception is thrown.
  int MergeSiteLists(tag_Site* first, tag_Site* second, bool useSecond, tag_Site** finalList);

  // Appends copies of the records of `source` behind `*tail`, without records of unknown kind and,
  // with `skipProxy`, without proxies. `source` must not be the list itself. If `*tail` is null,
  // the first copy becomes `*head`, and the list that was in it stays the caller's. `*tail` is then
  // the last copy. If nothing was copied it is unchanged, and what followed it is cut off all the
  // same. Returns 0; -2 for a null argument; or -3 with the copies so far in the list.
  int MergeThisSiteList(tag_Site* source, bool skipProxy, tag_Site** tail, tag_Site** head);

  // Copies the first fallback site that is of kind SITE_KIND_HTTP or SITE_KIND_FTP. The pNext of
  // the copy still points into `list`: set it to null before FreeSiteListMemory. Returns 0; -1 when
  // there is none; -2 for a null argument; or -3. `*fallback` is unchanged on failure.
  int GetFallbackSite(tag_Site* list, tag_Site** fallback);

  // Puts a fallback site, which must not be a record of the list, into the list.
  //
  // - `*head` is null: the site becomes the list, and `*tail` is unchanged.
  // - The site is of kind SITE_KIND_HTTP or SITE_KIND_FTP and the list has a fallback site of any
  //   kind: its content replaces that of the first one, which keeps its place. The site itself is
  //   released, and `*tail` is unchanged.
  // - Otherwise, if `*tail` is not null: the site is linked behind `*tail` and becomes `*tail`.
  // - Otherwise nothing is done, and the site stays the caller's.
  //
  // Returns 0 in all of these cases. Returns -2 for a null argument, and the site stays the
  // caller's.
  int UpdateFallbackSite(tag_Site* fallback, tag_Site** tail, tag_Site** head);

  // Copies every management server site, in list order. `*chain` must be null. Returns 0; -8 when
  // there is none; -2 for a null argument; or -3 with the copies so far in `*chain`. `*chain` is
  // unchanged on -8 and -2.
  int GetVestaSite(tag_Site* list, tag_Site** chain);

  // Replaces the server sites of a list by `chain`, which must not be part of the list. A server
  // site that directly follows a removed one is not removed.
  //
  // - `*head` is null: the chain becomes the list, and `*tail` is unchanged.
  // - The list has a server site: the server sites are released, and the chain is linked at the
  //   end. If the record of `*tail` was released, `*tail` is then the last record. Otherwise it is
  //   unchanged and no longer the last record.
  // - The list has none and `*tail` is not null: the list is unchanged, and the chain stays the
  //   caller's. `*tail` is then the first record of the chain, and the last record of the chain
  //   points to what followed the old `*tail`.
  // - The list has none and `*tail` is null: nothing is done, and the chain stays the caller's.
  //
  // Returns 0 in all of these cases, or -2 for a null argument.
  int UpdateVestaSite(tag_Site* chain, tag_Site** tail, tag_Site** head);

  // --- Validation --------------------------------------------------------------------------------

  // Checks that a list can be used: it must have sites. With `checkServer` its first management
  // server site must also be complete. If that one has a version, key files that are not empty must
  // be beside the site list file that the instance read last. Every fault is one log line. Returns
  // 0; -9 when a rule failed; or the failure of GetVestaSite.
  int SourceSiteListCheck(tag_Site* list, bool checkServer);

  // Reads a file with MustReadSiteList and checks it. `path` must not be empty. Returns true when
  // both succeeded.
  bool ValidateSiteListForInstall(const std::wstring& path, bool checkServer);

  // --- Import and install ------------------------------------------------------------------------

  // Makes an incoming site list file the instance's own, without checks: key files first, then the
  // list with its versions, type and certificates. `srcPath` must not be empty, and the instance
  // must have a file of its own. The file is read once, and everything that is taken from it is
  // from that read. `keyDir` has the server's public key for a list whose server has no version; it
  // may be empty.
  //
  // Returns 0; the failure of MustReadSiteList or GetSitelistVersions; or -1 when the key files or
  // the list could not be written. The old list stays until the new one is written, but key files
  // may have been replaced before. CreateSiteList says what 0 does not mean.
  int InstallSiteList(const std::wstring& srcPath, const std::wstring& keyDir);
  // The same after a check with SourceSiteListCheck, which checks the management server when the
  // agent is managed. Also returns the failure of the check; nothing is written then.
  int ImportSiteList(const std::wstring& srcPath, const std::wstring& keyDir);
  // The part that both have in common, for a list that was read from `srcPath`. The list stays the
  // caller's. AdjustSitesOrder and CreateSiteList modify its records.
  int InternalImportSiteList(const std::wstring& srcPath, tag_Site* sites,
                             const std::wstring& keyDir);

  // Exchanges the orders of the two default vendor repositories when FTP would come before HTTP.
  // The HTTP one is of kind SITE_KIND_HTTP with the host c_vendorHttpHost and port 80. The FTP one
  // is of kind SITE_KIND_FTP with the host c_vendorFtpHost and port 21. sitehlp/vendor_hosts.h has
  // both hosts; case is ignored. Each must be enabled (bEnabled is 1), not local and not of type
  // "fallback"; the first such record is taken. Nothing is exchanged when one is missing or has the
  // order 0. Null is allowed.
  void AdjustSitesOrder(tag_Site* sites);

  // --- Lists from memory -------------------------------------------------------------------------

  // Writes a site list document held as text to "/Library/Korvel/orb/scratch/etc/SiteList.xml",
  // whichever agent is served. The directory must exist. The mesh service gets the document as
  // well. The certificates are those of the text or, if it has no bundle, of the instance's own
  // file. Versions and type are those that CreateSiteList uses in place of empty ones. The policy
  // settings of the text are added to those of the instance.
  //
  // Returns -2 for an empty text, -5 when it is not well formed, -104 when it is over a limit, and
  // -1 when the last site is of unknown kind; nothing is written then. Otherwise returns the result
  // of CreateSiteList.
  int CreateSiteListFromBuffer(const std::wstring& buffer);

  // Stores a server site list handed over as bytes as "ServerSiteList.xml" in the agent's data
  // directory. If `adjustPasswords` is set and the key size is 2048 bits, does the same as
  // AdjustPwd, but with the server's key, and returns 1 whatever its result. Otherwise stores the
  // bytes unchanged and unchecked, and returns 1 on success and 0 on failure.
  int CreateServerSiteList(korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>& buffer,
                           bool adjustPasswords);

  // Reads a server site list from bytes and writes it to "ServerSiteList.xml" in the agent's data
  // directory, with its own versions, type and certificates. The mesh service gets the document as
  // well. The policy settings of the bytes are added to those of the instance.
  //
  // Passwords are written in the agent's own protection. A direct call recovers them with the
  // agent's own key. CreateServerSiteList recovers them with the server's key, as decrypt_data
  // does, except "HttpProxyPassword". A password that cannot be recovered is stored as an empty
  // one.
  //
  // Returns 0, or -1 when the last site is of unknown kind; a failed write is not reported. Returns
  // -5 or -104 when the bytes are not a document or over a limit; nothing is written then.
  int AdjustPwd(korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>& buffer);

  // --- CA certificates, policy settings, management servers --------------------------------------

  // Appends the texts of the CA certificates of a site list file, read under the read lock. Returns
  // 0, also for a file without markup; -4 when the file does not exist; -5 when it is not well
  // formed; -10 when it could not be read; or -11 when it is over a limit. Certificates that were
  // appended before a failure stay.
  int GetCaCertificates(const std::wstring& path, std::vector<std::wstring>& certificates);

  // Gets a policy setting that the instance has read or was given. Returns false and leaves `value`
  // unchanged when there is no such setting.
  bool GetPolicySetting(const std::wstring& name, std::wstring& value);
  // Sets a policy setting that every later write of this instance puts into its document.
  void SetPolicySetting(const std::wstring& name, const std::wstring& value);

  // Gets the management servers of the instance's own list, sorted by order; of several with the
  // same order only the first. Each text output has the values of all servers, joined with ";", if
  // `allSites` is set; else that of the first server. The list is that of SmartReadSiteList: while
  // one is cached, it is used whichever file it came from.
  //
  // An IP address that has a "[" loses its first and its last character; the other outputs keep
  // their brackets. `port` is the secure port of the last server that was taken, or its other port
  // if it has no secure one or `nonSecurePort` is set. A port above 2147483647 becomes negative.
  //
  // Returns the result of SmartReadSiteList or GetVestaSite. The outputs are written only when
  // there is a server. An empty list gives 0 and leaves them unchanged.
  int GetPYXServerInfo(std::wstring& names, std::wstring& servers, std::wstring& serverIPs,
                       std::wstring& netbiosNames, int& port, std::wstring& versions, bool allSites,
                       bool nonSecurePort);

  // --- Key files ---------------------------------------------------------------------------------

  // Reads one key file. Returns false and leaves `out` unchanged when it cannot be read. Returns
  // false with an empty `out` and an error line when the file is empty.
  bool readKeyFile(const AString& dir, const AString& name, ABuffer& out);

  // Reads the key files of an incoming list. Each flag tells whether its buffer counts; all flags
  // must be false before the call.
  //
  // If the list has a management server with a version, reads the two sets beside
  // `srcSiteListPath`. A set counts only when both its files can be read; the buffer of a lone
  // public key may be filled although its flag is false. Returns false when neither set counts.
  //
  // Otherwise reads the public key from `keyDir`, or nothing if `keyDir` is empty. Only `hasSrPub`
  // and `hasReqSec` are written. Returns false when the key cannot be read; the flags are unchanged
  // then.
  bool readKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                    const std::wstring& keyDir, ABuffer& srPub, ABuffer& reqSec, ABuffer& sr2048Pub,
                    ABuffer& req2048Sec, bool& hasSrPub, bool& hasReqSec, bool& hasSr2048Pub,
                    bool& hasReq2048Sec);

  // Writes one key file into `dir`. `subDir` is not used. Returns false when it could not be
  // written.
  bool writeKeyFile(const ABuffer& data, const AString& name, const AString& subDir,
                    const AString& dir);

  // Writes the key files whose flags are set. If only public keys were written, deletes the request
  // key "reqseckey.bin", but not "req2048seckey.bin". Files that were written before a failure
  // stay.
  bool writeKeyFiles(bool hasSrPub, bool hasReqSec, const ABuffer& srPub, const ABuffer& reqSec,
                     bool hasSr2048Pub, bool hasReq2048Sec, const ABuffer& sr2048Pub,
                     const ABuffer& req2048Sec, const AString& dir);

  // Returns true when the file does not exist or the effective user may write it. Logs an error
  // when it may not be written, but not when that cannot be determined; returns false in both
  // cases.
  bool writable(const AString& path);

  // Installs the key files of an incoming list beside the instance's own file, which must be set,
  // and creates its directory. Checks that every file can be written before it writes the first.
  // Files that were written before a failure stay; nothing is rolled back.
  //
  // Then copies the FIPS marker and ignores whether that succeeds. Its path is the directory with
  // "\agentfipsmode" appended: for "/data/etc/SiteList.xml" it is the file "etc\agentfipsmode" in
  // "/data". If the source has no marker, an old one stays.
  bool createDirectoriesAndCopyKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                                        const std::wstring& keyDir);

  // --- Editing documents -------------------------------------------------------------------------
  // These change whole documents and keep what records do not hold. Component of their log lines:
  // "StSHlp".

  // Edits the instance's own file from the incoming list at `sourcePath`, installs the key files of
  // that list (`keyDir` as for ImportSiteList), and writes the file back. Both files must be named.
  // The incoming list is read once, and everything that is taken from it is from that read.
  //
  // With `replaceRepositories` the two default vendor repositories are replaced by those of the
  // source. They keep the two orders of the target; the source decides which of them comes first,
  // unless the target has one as "fallback". Each keeps its type in the target, but one without
  // "Type" in the source has none afterwards. A repository without an order in one of the lists is
  // not replaced.
  //
  // With `replaceServerSites` the management servers and the CA bundle are replaced by those of the
  // source. Servers that both lists have are unchanged.
  //
  // "SiteListLock" is held while the own file is read and while it is written, but not in between:
  // a change that another process makes meanwhile is lost. The mesh service is not told. The policy
  // settings of the source are added to those of the instance.
  //
  // Returns true only when the file was written. Also fails when the last site of the source is of
  // unknown kind, and when the result would be over a limit of ReadSiteList. The file is unchanged
  // after a failure, but key files may have been installed.
  bool modifySiteList(const wchar_t* sourcePath, bool replaceRepositories, bool replaceServerSites,
                      const AString& keyDir);

  // Removes `target`, then gets the child of `targetSiteList` that has the name and the "Server" of
  // `source`, or adds one at the end. Copies `source` to it with copyXmlAttributesAlter and
  // copyXmlSubNodes. `target` is then that child.
  void replaceWexRepository(AnXmlNode& source, AnXmlNode& targetSiteList, AnXmlNode& target,
                            int order, const wchar_t* type);

  // Returns whether two management server elements have the same "Name", "Server", "ServerName" and
  // "ServerIP". False when one of these is missing.
  bool IstheSamePyxSite(AnXmlNode& a, AnXmlNode& b);

  // Replaces the management servers and the CA bundle of the target by those of the source. Servers
  // that both have are unchanged. New ones are added at the end, without "Order". If the source has
  // no bundle, the target has none afterwards. Does nothing when either root has no "SiteList".
  void doReplacePyxSite(AnXmlNode& targetRoot, AnXmlNode& sourceRoot);

  // Copies attributes and text of an element. "Order" is set to `order`; if that is 0, it is not
  // copied and the target keeps its own. "Type" is set to `type`; if that is null or empty, it is
  // copied. Neither is added when the source does not have it. Attributes that only the target has
  // are unchanged.
  void copyXmlAttributesAlter(AnXmlNode& source, AnXmlNode& target, int order, const wchar_t* type);
  // Copies attributes and text of an element. Attributes that only the target has are unchanged.
  void copyXmlAttributes(AnXmlNode& source, AnXmlNode& target);
  // Copies the child elements with attributes and text, but not their own children. A child of the
  // target that has the same name is reused, so several children of one name become one.
  void copyXmlSubNodes(AnXmlNode& source, AnXmlNode& target);

  // Reads "SiteList.xml" in `sourceDir`, removes the repositories whose "Local" is "1", and writes
  // the result to "ServerSiteList.xml" in `targetDir`, or in `sourceDir` if `targetDir` is null. An
  // empty directory is the current one. "SiteListLock" is held while each file is read or written.
  // Returns true only when the file was written. Also fails, with nothing changed, when the target
  // leads to the source. Needs no instance.
  static bool createServerSiteListFromSiteList(const wchar_t* sourceDir, const wchar_t* targetDir);

 protected:
  // The members are for derived classes. This one is the path of the instance's own file, or empty.
  std::wstring m_strSiteListFile;
  std::wstring m_strCurrentFile;    // path of the file read last
  std::wstring m_strLocalVersion;   // of its own file when it was made
  std::wstring m_strGlobalVersion;  // of its own file when it was made
  std::wstring m_strSiteListType;   // of its own file; "Client" without one
  std::wstring m_strReserved;       // not used
  // The anchor of AddHTTPSite and the operations like it; null unless a derived class sets it.
  AdvXMLParser::Element* m_pSiteListElement;
  // All that was read and set since the instance was made; never cleared.
  std::map<std::wstring, std::wstring> m_policySettings;
  std::int32_t m_iManagedOverride;  // the last value of SetManagedOverride
  std::int32_t m_iReserved;         // not used
  std::int32_t m_bUseDecryptData;   // 1: recover with the server's key

 public:
  // The list cached in this process; null without one. It belongs to the class; see
  // SmartReadSiteList, also for threads.
  static tag_Site* m_pSiteList;
  // Its change counter: 1 after a read, plus 1 for each needToUpdateInMemSiteList.
  static std::int32_t m_iChange;
};

}  // namespace sitehlp

#endif
