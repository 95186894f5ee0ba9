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

// The file name of the agent's own site list, in its "etc" directory. This name and those below are
// shared by all processes of the agent.
constexpr const wchar_t* c_sitelistName = L"SiteList.xml";
// The file name of the list that CreateServerSiteList stores in the agent's data directory.
constexpr const wchar_t* c_serverSitelistName = L"ServerSiteList.xml";
constexpr const char* c_siteListLock = "SiteListLock";          // guards the files
constexpr const char* smartSiteListLock = "SmartSiteListLock";  // guards the cached list
constexpr const wchar_t* c_proxyParamDelimiter = L";";          // separates exclusion hosts
// Starts a macro.
constexpr const wchar_t* c_agentEnvMacroStartDelimiter = L"<";
// Ends a macro.
constexpr const wchar_t* c_agentEnvMacroEndDelimiter = L">";
// Starts an expanded macro, a form that records may have.
constexpr const wchar_t* c_agentEnvMacroStartDelimiterExpanded = L"%%lt%%";
// Ends an expanded macro.
constexpr const wchar_t* c_agentEnvMacroEndDelimiterExpanded = L"%%gt%%";

// The values of CSitesHelper::SetManagedOverride.
constexpr std::int32_t c_overrideNone = 0;         // the agent's configuration determines it
constexpr std::int32_t c_overrideManaged = -1;     // under central management
constexpr std::int32_t c_overrideNotManaged = -2;  // not under central management

// Splits `text` at its last ":" into host and port. Brackets of an IPv6 address stay in `host`. The
// port is an unsigned decimal number. Leading white space is skipped, and reading stops at the
// first character that is not a digit. A sign is not a digit. Returns true if there is a ":", even
// if no port follows. `port` is unchanged if no digit follows the ":" or if the number needs more
// than 32 bits. Without a ":" both outputs are unchanged. Any thread.
SITEHLP_API bool split_host_and_port(std::wstring text, std::wstring& host, unsigned int& port);

// Decrypts a password that the management server encrypted. `in` is base64 text in the standard
// alphabet with padding. White space is skipped. The text encodes these bytes:
//
//   version (1 byte, value 1) | nonce (12 bytes) | ciphertext | tag (16 bytes)
//
// The cipher is AES-256-GCM. The version byte is its additional authenticated data. The clear text
// is UTF-8 and ends at its first zero byte. The key is the server key, the 32 bytes of the agent's
// file "keystore/server.key". libsitehlp-host uses this form. Another platform may use its own.
//
// Returns nonzero on success. Returns 0 on failure and leaves `out` unchanged. Any thread.
SITEHLP_API int decrypt_data(const std::wstring& in, std::wstring& out);

// Reads, writes, merges, checks, imports and edits site lists. An instance is cheap, so a caller
// may create one for each call.
//
// Threads: one instance must not be used by two threads at the same time. Several threads, each
// with its own instance, may run all operations at the same time. SmartReadSiteList states one
// exception. A child of fork may call every operation immediately, whatever other threads did at
// the fork.
//
// Locks: the inter-process lock "SiteListLock" guards site list files. It is held only while a file
// is read or written. "SmartSiteListLock" guards the cached list. When both are needed,
// "SmartSiteListLock" is taken first. A wait for a lock has no time limit. If a lock cannot be
// taken, an error is logged and the operation continues without it.
//
// Files are replaced atomically.
//
// Links: a symbolic link in a path that is written is followed only if it belongs to the effective
// user or to root. Any other link makes the write fail.
//
// Users: access(path, F_OK) checks as the real user whether a file exists. Files are read and
// written as the effective user. If the two users differ, an operation may report a file as missing
// although it could read it.
//
// Unless the comment of an operation states otherwise:
//
// - Results are the codes of sitehlp/result_codes.h. 0 means success.
// - Outputs are unchanged on failure.
// - An empty path means the instance's own site list file.
// - Only std::bad_alloc is thrown. An exception that an operation catches changes its result or
//   causes an error line in the log.
// - A list that an operation returns belongs to the caller. The caller must release it with
//   FreeSiteListMemory. ListOwner in sitehlp/list.h does that.
class SITEHLP_API CSitesHelper {
 public:
  // If `skipDefaultFile` is false, the instance's own file is "SiteList.xml" in the agent's "etc"
  // directory, and its versions are read under "SiteListLock". If the file is missing or cannot be
  // read, the versions are empty and the type is "Client". If `skipDefaultFile` is true, the
  // instance has no file of its own, and callers name every file.
  explicit CSitesHelper(bool skipDefaultFile);
  // The instance's own file is `fullPath`. Its versions are read in the same way.
  explicit CSitesHelper(std::wstring fullPath);
  // Does the same for a wide literal. Without this constructor, a wide literal would convert to
  // bool. A null pointer is an empty path.
  explicit CSitesHelper(const wchar_t* fullPath)
      : CSitesHelper(std::wstring(fullPath ? fullPath : L"")) {}
  // Deleted, because a number or another pointer, such as a narrow path, would convert to bool.
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

  // Returns 1 if the agent is under central management, else 0.
  int IsOrbManaged();

  // Sets what IsOrbManaged returns for this instance: c_overrideManaged, c_overrideNotManaged or
  // c_overrideNone. Any other value means c_overrideNone.
  void SetManagedOverride(std::int32_t managedOverride);

  // Marks the cached list of this process as changed, under the write lock "SmartSiteListLock".
  // After at least two of these calls, SmartReadSiteList reads the file again.
  void needToUpdateInMemSiteList();

  // --- Records -----------------------------------------------------------------------------------

  // Fills a text field of `capacity` characters and sets the rest of it to zero. A text that does
  // not fit is cut to `capacity` - 1 characters, and the whole text is logged at detail level.
  // Neither pointer may be null. `capacity` must be at least 1.
  static void CopyWStr(wchar_t* dest, const wchar_t* src, unsigned long capacity);

  // Wipes the passwords of a list and releases every record. Null is allowed. Always returns 0.
  static int FreeSiteListMemory(tag_Site* head);

  // Returns a number in decimal, or a bool as "1" or "0".
  static std::wstring ConvertToStr(unsigned int value);
  static std::wstring ConvertToStr(int value);
  static std::wstring ConvertToStr(bool value);

  // --- Passwords ---------------------------------------------------------------------------------

  // Encrypts a clear password with the password key, in the platform's format. Returns nonzero on
  // success. Returns 0 on failure and leaves `out` unchanged. Fails when the text has a character
  // that is not a Unicode scalar value. Does not use the state of the instance.
  int EncryptPassword(const std::wstring& in, std::wstring& out);

  // --- Reading -----------------------------------------------------------------------------------

  // Reads a site list file into a new list, which is null when the document has no sites. Adds its
  // policy settings to those of the instance. Settings of earlier reads remain. If `useLock` is
  // set, the file is read under the read lock "SiteListLock". Returns
  //
  // - 0 when the document was read;
  // - -1 when the last site element is of unknown kind; the list is returned as well;
  // - -2 when there is no path;
  // - -4 when the file does not exist;
  // - -5 when the document is not well formed;
  // - -10 when the file could not be read, is too large, or is not valid in its encoding;
  // - -104, which is AdvXMLParser::ReadWriteException::LIMIT_EXCEEDED, when the document is over
  //   another limit.
  //
  // `*list` is unchanged on -2, -4 and -10, and null on -5. docs/site-list-format.md gives the
  // limits of a document. If one of them is exceeded, `*list` is null. A list may also have at most
  // 1,024 elements of unknown kind, and its records at most IConfiguration::GetMaxRecordBytes()
  // bytes. If one of these two limits is exceeded, `*list` has the records that were read before,
  // and the policy settings were added.
  int ReadSiteList(const std::wstring& path, tag_Site** list, bool useLock);

  // Sets `*record` to null, then decodes one site element, or a "ProxyConfig", into a new
  // zero-filled record of its kind. The caller releases it with free. Neither pointer may be null.
  // Returns 0, or -1 if the element is of unknown kind.
  int ReadSiteFromSiteList(AdvXMLParser::Element* element, void** record);

  // Gets the list that this process has cached. Reads the file first if no list is cached, or if
  // needToUpdateInMemSiteList was called at least twice since the last read. Reads it like
  // ReadSiteList with `useLock` set. Returns 0 or the result of ReadSiteList.
  //
  // Caution: while a list is cached, `path` is ignored. The cached list is returned even if it came
  // from another file.
  //
  // If the result is 0, the list belongs to the class and must not be released. A null list with
  // the result 0 means that the document has no sites. Then nothing is cached. A list with a
  // negative result is not cached and belongs to the caller. `*list` is unchanged on -2, -4 and
  // -10.
  //
  // Threads: a later SmartReadSiteList or GetPYXServerInfo, in any thread, may release the list.
  // Neither may run in another thread while this operation runs or its list is used.
  int SmartReadSiteList(const std::wstring& path, tag_Site** list);

  // Reads a file like ReadSiteList with `useLock` set. An empty `path` gives -1 and leaves `*list`
  // unchanged. ReadSiteList also returns -1, but with a list. Set `*list` to null before the call
  // to distinguish the two cases. A failure or an empty list is logged as an error.
  int MustReadSiteList(const std::wstring& path, tag_Site** list);

  // Reads everything in a site list file. The file is read once, under the read lock
  // "SiteListLock". `path` must not be empty. Fills `contents`, then calls `take` for each site in
  // document order. The next site is decoded only after `take` has returned. The whole list is
  // therefore never in memory. Returns what ReadSiteList returns. `contents` is empty when the
  // document could not be read or parsed. An exception thrown by `take` reaches the caller. Any
  // thread.
  static int ReadListContents(const std::wstring& path, ListContents& contents,
                              const TakeSite& take);

  // Reads the text of the instance's own file and removes the first "<CaBundle>" tag. The content
  // and the closing tag of the bundle remain. Returns false and leaves `text` unchanged if there is
  // no such file. Throws AdvXMLParser::ReadWriteException if the file cannot be read.
  bool GetSiteListBuffer(std::wstring& text);

  // --- Writing -----------------------------------------------------------------------------------

  // Writes a list as a complete document under the write lock "SiteListLock". Then writes the same
  // document to the mesh copy, runs the load command, and waits for its end.
  //
  // `list` is null for an empty list. An empty `globalVersion` is replaced with the version of the
  // instance. If both are empty, the local version is used. An empty `localVersion` is replaced
  // with the current local time in 14 digits. An empty `type` is replaced with the type of the
  // instance, or with "Client". The certificates are written in the order of `certificates`. The
  // policy settings are those of the instance, sorted by name.
  //
  // Side effect: the records of `list` are modified. Expanded macros become "<" and ">" again. A
  // proxy record keeps only the first host of its exclusion list. Its iExclusionCount is unchanged
  // and no longer matches the list.
  //
  // A password that cannot be encrypted is written as an empty one. If the first record is of
  // unknown kind, all others are written after the "SiteList" element. A read ignores them there.
  //
  // Returns
  //
  // - 0 when the last record was processed;
  // - -1 when the last record is of unknown kind. The document is written without that record;
  // - -11 when the file could not be written or there is no path. The mesh copy is still written,
  //   and the load command is run;
  // - -11 also when the document would exceed a limit of ReadSiteList. The old file is then
  //   unchanged and the load command is not run.
  //
  // The result 0 does not mean that every record was written, that every password was encrypted, or
  // that the mesh service loaded the mesh copy. If there is not enough memory to build the
  // document, nothing is written and an error is logged. The result then covers only the records
  // processed so far, so it may be 0.
  int CreateSiteList(tag_Site* list, const std::wstring& path, const std::wstring& globalVersion,
                     const std::wstring& localVersion, const std::wstring& type,
                     const std::vector<std::wstring>& certificates);

  // Adds the element of one HTTP record to a tree, in the format of CreateSiteList. This is for
  // derived classes that build their own tree. They set m_pSiteListElement to a handle on an anchor
  // element. `position` 0 makes the new element a child of the anchor. Any other position adds it
  // at the end of the anchor's parent. The handle then refers to the new element. Does nothing
  // without an anchor. `site` must not be null. It is modified as by CreateSiteList. Always returns
  // 0.
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
  // the text to `capacity` - 1 characters. Delimiters beyond `capacity` are replaced too, before
  // the cut. Does nothing for a null buffer, an empty text or a capacity of 0. Always returns 0.
  int FormatEnvSymbols(wchar_t* buffer, unsigned int capacity);

  // --- Versions and FIPS mode --------------------------------------------------------------------

  // Reads the versions and the type of a site list file, under the read lock "SiteListLock". A
  // missing version is empty. A missing type is "Client". Returns
  //
  // - 0 when the document was read;
  // - -1 when it is not well formed or is over a limit;
  // - -4 when the file does not exist;
  // - -10 when the file could not be read, is too large, or is not valid in its encoding.
  //
  // All outputs are unchanged on -4. On -1 and -10 both versions are empty and `type` is unchanged.
  int GetSitelistVersions(const std::wstring& path, std::wstring& globalVersion,
                          std::wstring& localVersion, std::wstring& type);
  // Reads the global version of the instance's own file. Results and output are those of
  // GetSitelistVersions. Returns -4 when the instance has no file of its own.
  int GetGlobalSitelistVersion(std::wstring& globalVersion);
  // Reads the FIPS mode of a site list file. Results are those of GetSitelistVersions. Also returns
  // -1 when the list has no FIPS mode. `fipsMode` is written only on success.
  int GetSitelistFipsMode(const std::wstring& path, std::wstring& fipsMode);

  // --- Merge -------------------------------------------------------------------------------------
  // `*head` and `*tail` are the first and the last record of a list. Both are null for an empty
  // one. If `*tail` is not the last record, the records after it are cut off when a record is
  // appended. They are then no longer in the list and are not released.

  // Builds a new list from copies. `*finalList` must be null. Either source may be null, and both
  // remain the caller's.
  //
  // - `useSecond` is false: the result is the instance's own list, read from disk, with the
  //   fallback site and the management servers of `first`.
  // - `useSecond` is true and `first` is not null: the result is `second` followed by `first`
  //   without its proxies.
  // - `useSecond` is true and `first` is null: the result is `second` with the fallback site and
  //   the management servers of the instance's own list.
  //
  // Management servers replace only management servers. If the result is empty, it receives the
  // management servers.
  //
  // Returns
  //
  // - 0 when the last step succeeded;
  // - -2 for a null `finalList`, which is logged;
  // - the failure of the last step.
  //
  // The step that inserts management servers returns 0, so it hides a failure to read the
  // instance's own list. On every failure `*finalList` is null, even when an exception is thrown.
  int MergeSiteLists(tag_Site* first, tag_Site* second, bool useSecond, tag_Site** finalList);

  // Appends copies of the records of `source` after `*tail`. Skips records of unknown kind and, if
  // `skipProxy` is set, proxies. `source` must not be the list itself. If `*tail` is null, the
  // first copy becomes `*head`, and the list that was in `*head` remains the caller's. Afterwards
  // `*tail` is the last copy. If nothing was copied, `*tail` is unchanged, but the records after it
  // are cut off as well. Returns
  //
  // - 0 when all records were copied or skipped;
  // - -2 for a null argument;
  // - -3 when a record could not be allocated. The copies so far are in the list.
  int MergeThisSiteList(tag_Site* source, bool skipProxy, tag_Site** tail, tag_Site** head);

  // Copies the first fallback site that is of kind SITE_KIND_HTTP or SITE_KIND_FTP. The pNext of
  // the copy still points into `list`. Set it to null before FreeSiteListMemory. `*fallback` is
  // unchanged on failure. Returns
  //
  // - 0 when the site was copied;
  // - -1 when there is none;
  // - -2 for a null argument;
  // - -3 when the record could not be allocated.
  int GetFallbackSite(tag_Site* list, tag_Site** fallback);

  // Inserts a fallback site into a list. `fallback` must not be a record of the list.
  //
  // - `*head` is null: the site becomes the list, and `*tail` is unchanged.
  // - If the site is of kind SITE_KIND_HTTP or SITE_KIND_FTP, and the list has a fallback site: the
  //   content of the first fallback site is replaced. Its place is unchanged. The inserted site is
  //   released, and `*tail` is unchanged.
  // - Otherwise, if `*tail` is not null: the site is linked after `*tail` and becomes `*tail`.
  // - Otherwise nothing is done, and the site remains the caller's.
  //
  // Returns 0 in all of these cases. Returns -2 for a null argument, and the site remains the
  // caller's.
  int UpdateFallbackSite(tag_Site* fallback, tag_Site** tail, tag_Site** head);

  // Copies every management server, in list order. `*chain` must be null. It is unchanged on -2
  // and -8. Returns
  //
  // - 0 when the sites were copied;
  // - -2 for a null argument;
  // - -3 when a record could not be allocated. The copies so far are in `*chain`;
  // - -8 when there is none.
  int GetVestaSite(tag_Site* list, tag_Site** chain);

  // Replaces the management servers of a list with `chain`, which must not be part of the list. A
  // management server that directly follows a removed one is not removed.
  //
  // - `*head` is null: the chain becomes the list, and `*tail` is unchanged.
  // - The list has a management server: the management servers are released, and the chain is
  //   linked at the end. If the record of `*tail` was released, `*tail` is then the last record.
  //   Otherwise it is unchanged and no longer the last record.
  // - The list has none and `*tail` is not null: the list is unchanged, and the chain remains the
  //   caller's. `*tail` is then the first record of the chain, and the last record of the chain
  //   points to what followed the old `*tail`.
  // - The list has none and `*tail` is null: nothing is done, and the chain remains the caller's.
  //
  // Returns 0 in all of these cases, or -2 for a null argument.
  int UpdateVestaSite(tag_Site* chain, tag_Site** tail, tag_Site** head);

  // --- Validation --------------------------------------------------------------------------------

  // Checks that a list has sites. If `checkServer` is set, its first management server must also be
  // complete. If that server has a version, key files that are not empty must exist next to the
  // site list file that the instance read last. Each fault gives one log line. Returns
  //
  // - 0 when there is no fault;
  // - -9 when there is a fault;
  // - the failure of GetVestaSite, if `checkServer` is set. It is -2 for a list without sites and
  //   -8 for a list without a management server.
  int SourceSiteListCheck(tag_Site* list, bool checkServer);

  // Reads a file with MustReadSiteList and checks it with SourceSiteListCheck. `path` must not be
  // empty. Returns true if both succeeded.
  bool ValidateSiteListForInstall(const std::wstring& path, bool checkServer);

  // --- Import and install ------------------------------------------------------------------------

  // Makes an incoming site list the instance's own, without checks. Installs the key files first,
  // then the list with its versions, type and certificates. `srcPath` must not be empty, and the
  // instance must have a file of its own. The incoming file is read only once. `keyDir` is the
  // directory of the management server's public key. It is used unless a management server in the
  // list has a version. If it is empty, no key is read.
  //
  // The policy settings of the list are added to those of the instance, even if a later step fails.
  // The new list has all settings of the instance.
  //
  // Returns
  //
  // - 0 when the list was installed;
  // - -1 when the key files could not be read or written, or the list could not be written;
  // - the failure of MustReadSiteList or GetSitelistVersions.
  //
  // The old list remains until the new one is written, but key files may be replaced before that.
  // See CreateSiteList for failures that the result 0 does not report.
  int InstallSiteList(const std::wstring& srcPath, const std::wstring& keyDir);
  // Checks the list with SourceSiteListCheck, then does the same as InstallSiteList. The management
  // server is checked when the agent is managed. Also returns the failure of the check. Then
  // nothing is written.
  int ImportSiteList(const std::wstring& srcPath, const std::wstring& keyDir);
  // Does the part that InstallSiteList and ImportSiteList share, for a list that was read from
  // `srcPath`, which must not be empty. The list remains the caller's. AdjustSitesOrder and
  // CreateSiteList modify its records.
  int InternalImportSiteList(const std::wstring& srcPath, tag_Site* sites,
                             const std::wstring& keyDir);

  // Swaps the orders of the two default vendor repositories if FTP would come before HTTP. The HTTP
  // one is of kind SITE_KIND_HTTP with the host c_vendorHttpHost and port 80. The FTP one is of
  // kind SITE_KIND_FTP with the host c_vendorFtpHost and port 21. sitehlp/vendor_hosts.h defines
  // both hosts. Case is ignored. Each must be enabled (bEnabled is 1), not local and not of type
  // "fallback". The first such record is used. Nothing is swapped if one is missing or has the
  // order 0. Null is allowed.
  void AdjustSitesOrder(tag_Site* sites);

  // --- Lists from memory -------------------------------------------------------------------------

  // Writes a site list document held as text to "/Library/Korvel/orb/scratch/etc/SiteList.xml",
  // whichever agent the process uses. The directory must exist. The mesh copy is written as well,
  // and the load command is run. The certificates are those of the text or, if it has no bundle, of
  // the instance's own file. The versions and the type of the text are not used. CreateSiteList
  // writes its defaults instead. The policy settings of the text are added to those of the
  // instance.
  //
  // Returns the result of CreateSiteList, or
  //
  // - -1 when the last site is of unknown kind;
  // - -2 for an empty text;
  // - -5 when the text is not well formed;
  // - -104 when it is over a limit.
  //
  // On one of these four, nothing is written.
  int CreateSiteListFromBuffer(const std::wstring& buffer);

  // Stores the bytes of a server list as "ServerSiteList.xml" in the agent's data directory. If
  // `adjustPasswords` is set and the key size is 2048 bits, does the same as AdjustPwd, but
  // decrypts with the server key. It then always returns 1. Otherwise stores the bytes unchanged
  // and unchecked, and returns 1 on success and 0 on failure.
  int CreateServerSiteList(korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>& buffer,
                           bool adjustPasswords);

  // Reads a server list from bytes and writes it to "ServerSiteList.xml" in the agent's data
  // directory, with the versions, type and certificates of that list. The mesh copy is written as
  // well, and the load command is run. The policy settings of the list are added to those of the
  // instance.
  //
  // Passwords are written encrypted with the password key. A direct call decrypts them with the
  // password key. CreateServerSiteList decrypts them with the server key, as decrypt_data does,
  // except "HttpProxyPassword". A password that cannot be decrypted is stored as an empty one.
  //
  // A failed write is not reported. Returns
  //
  // - 0 when the last site was processed;
  // - -1 when the last site is of unknown kind;
  // - -5 when the bytes are not a document; nothing is written.
  // - -104 when the document is over a limit; nothing is written.
  int AdjustPwd(korvel_com::ZQ::crypto::AnObjectBuffer<unsigned char>& buffer);

  // --- CA certificates, policy settings, management servers --------------------------------------

  // Appends the texts of the CA certificates of a site list file. Reads the file under the read
  // lock "SiteListLock". Certificates that were appended before a failure remain. Returns
  //
  // - 0 when the file was read, also for a file without markup;
  // - -4 when the file does not exist;
  // - -5 when it is not well formed;
  // - -10 when it could not be read, is too large, or is not valid in its encoding;
  // - -11 when it is over another limit.
  int GetCaCertificates(const std::wstring& path, std::vector<std::wstring>& certificates);

  // Gets a policy setting that the instance has read or was given. Returns false and leaves `value`
  // unchanged if there is no such setting.
  bool GetPolicySetting(const std::wstring& name, std::wstring& value);
  // Sets a policy setting. Every later write of this instance puts it into the document.
  void SetPolicySetting(const std::wstring& name, const std::wstring& value);

  // Gets the management servers of the instance's own list, sorted by order. If several have the
  // same order, only the first is taken. If `allSites` is set, each text output has the values of
  // all servers, joined with ";". Otherwise it has the value of the first server. The list is that
  // of SmartReadSiteList. While a list is cached, it is used even if it came from another file.
  //
  // An IP address that has a "[" loses its first and its last character. The other outputs keep
  // their brackets. `port` is the secure port of the last server that was taken. If that server has
  // no secure port, or `nonSecurePort` is set, `port` is its plain port. A port above 2147483647
  // becomes negative.
  //
  // Returns the result of SmartReadSiteList or GetVestaSite. The outputs are written only if there
  // is a server. An empty list gives 0 and leaves them unchanged.
  int GetPYXServerInfo(std::wstring& names, std::wstring& servers, std::wstring& serverIPs,
                       std::wstring& netbiosNames, int& port, std::wstring& versions, bool allSites,
                       bool nonSecurePort);

  // --- Key files ---------------------------------------------------------------------------------

  // Reads one key file. Returns false and leaves `out` unchanged if it cannot be read. Returns
  // false with an empty `out` and an error line if the file is empty.
  bool readKeyFile(const AString& dir, const AString& name, ABuffer& out);

  // Reads the key files of an incoming list. `srcSiteListPath` must not be empty. Each flag shows
  // whether its buffer is valid. All flags must be false before the call.
  //
  // If the list has a management server with a version, reads the two key pairs next to
  // `srcSiteListPath`. A pair is valid only if both its files can be read. If only the public key
  // can be read, its buffer may be filled although its flag is false. Returns false if neither pair
  // is valid.
  //
  // If there is no such server, reads the public key from `keyDir`, or nothing if `keyDir` is
  // empty. Only the flags `hasSrPub` and `hasReqSec` are written. If the key cannot be read,
  // returns false and leaves the flags unchanged.
  bool readKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                    const std::wstring& keyDir, ABuffer& srPub, ABuffer& reqSec, ABuffer& sr2048Pub,
                    ABuffer& req2048Sec, bool& hasSrPub, bool& hasReqSec, bool& hasSr2048Pub,
                    bool& hasReq2048Sec);

  // Writes one key file into `dir`. `subDir` is not used. Returns false if it could not be written.
  bool writeKeyFile(const ABuffer& data, const AString& name, const AString& subDir,
                    const AString& dir);

  // Writes the key files whose flags are set. A file that already has the right content and mode is
  // not written again. If the result is true, all of them are on the disk. If only public keys were
  // given, deletes the request key "reqseckey.bin", but not "req2048seckey.bin". Files that were
  // written before a failure remain.
  bool writeKeyFiles(bool hasSrPub, bool hasReqSec, const ABuffer& srPub, const ABuffer& reqSec,
                     bool hasSr2048Pub, bool hasReq2048Sec, const ABuffer& sr2048Pub,
                     const ABuffer& req2048Sec, const AString& dir);

  // Returns true if the file does not exist or the effective user may write it. Returns false and
  // logs an error if the user may not write it. Returns false without an error line if that cannot
  // be determined.
  bool writable(const AString& path);

  // Installs the key files of an incoming list next to the instance's own file, which must be set.
  // `srcSiteListPath` must not be empty.
  // Creates the directory if it is missing. Checks that every file can be written before it writes
  // the first. Files that were written before a failure remain.
  //
  // Then copies the FIPS marker and ignores a failure of this copy. The path of the marker is the
  // directory with "\agentfipsmode" appended. For "/data/etc/SiteList.xml" it is the file
  // "etc\agentfipsmode" in "/data". If the source has no marker, an old one remains.
  bool createDirectoriesAndCopyKeyFiles(const std::wstring& srcSiteListPath, tag_Site* sites,
                                        const std::wstring& keyDir);

  // --- Editing documents -------------------------------------------------------------------------
  // These operations edit documents directly and keep the parts that records do not have. Their log
  // lines have the component "StSHlp".

  // Edits the instance's own file from the incoming list at `sourcePath`, installs the key files of
  // that list, and writes the file back. `sourcePath` must not be empty, and the instance must have
  // a file of its own. `keyDir` is used as in InstallSiteList. The incoming list is read only once.
  //
  // If `replaceRepositories` is set, the two default vendor repositories are replaced with those of
  // the source. They keep the two orders of the target. The source determines which of them
  // comes first, unless one of them is of type "fallback" in the target. Each keeps its type in the
  // target. If it has no type there, it gets the type of the source. If the source has no "Type",
  // the target has none afterwards. A repository without an order in one of the lists is not
  // replaced.
  //
  // If `replaceServerSites` is set, the management servers and the CA bundle are replaced with
  // those of the source. Servers that are in both lists are unchanged.
  //
  // "SiteListLock" is held while the instance's own file is read and while it is written. It is not
  // held between the two. A change that another process makes between them is lost. The load
  // command is not run. The policy settings of the source are added to those of the instance.
  //
  // Returns true only if the file was written. Returns false also if the last site of the source is
  // of unknown kind, or if the result would exceed a limit of ReadSiteList. The file is unchanged
  // after a failure, but key files may have been installed.
  bool modifySiteList(const wchar_t* sourcePath, bool replaceRepositories, bool replaceServerSites,
                      const AString& keyDir);

  // Removes `target`, then gets the child of `targetSiteList` that has the name and the "Server" of
  // `source`, or adds one at the end. Copies `source` to that child with copyXmlAttributesAlter and
  // copyXmlSubNodes. `target` is the child afterwards.
  void replaceWexRepository(AnXmlNode& source, AnXmlNode& targetSiteList, AnXmlNode& target,
                            int order, const wchar_t* type);

  // Returns whether two management server elements have the same "Name", "Server", "ServerName" and
  // "ServerIP". Returns false if one of these is missing.
  bool IstheSamePyxSite(AnXmlNode& a, AnXmlNode& b);

  // Replaces the management servers and the CA bundle of the target with those of the source.
  // Servers that are in both are unchanged. New servers are added at the end, without "Order". If
  // the source has no bundle, the target has none afterwards. Does nothing if either root has no
  // "SiteList".
  void doReplacePyxSite(AnXmlNode& targetRoot, AnXmlNode& sourceRoot);

  // Copies the attributes and the text of an element. "Order" is set to `order`. If `order` is 0,
  // the target keeps its own. "Type" is set to `type`. If `type` is null or empty, "Type" is
  // copied. An "Order" or "Type" that the source does not have is not added. Attributes that only
  // the target has are unchanged.
  void copyXmlAttributesAlter(AnXmlNode& source, AnXmlNode& target, int order, const wchar_t* type);
  // Copies the attributes and the text of an element. Attributes that only the target has are
  // unchanged.
  void copyXmlAttributes(AnXmlNode& source, AnXmlNode& target);
  // Copies the child elements with their attributes and text, but not their own children. A child
  // of the target with the same name is reused, so several children of one name become one.
  void copyXmlSubNodes(AnXmlNode& source, AnXmlNode& target);

  // Reads "SiteList.xml" in `sourceDir` and removes the HTTP, FTP, UNC and local repositories whose
  // "Local" is "1". Writes the result to "ServerSiteList.xml" in `targetDir`, or in `sourceDir` if
  // `targetDir` is null. An empty directory is the current one. "SiteListLock" is held while each
  // file is read or written. Returns true only if the file was written. Returns false and changes
  // nothing if both paths lead to the same file, or if that cannot be determined. The same holds if
  // the result would exceed a limit of ReadSiteList.
  static bool createServerSiteListFromSiteList(const wchar_t* sourceDir, const wchar_t* targetDir);

 protected:
  // These members are for derived classes.

  // The path of the instance's own file; empty if it has none.
  std::wstring m_strSiteListFile;
  std::wstring m_strCurrentFile;    // the path of the file read last
  std::wstring m_strLocalVersion;   // of the own file when the instance was created
  std::wstring m_strGlobalVersion;  // of the own file when the instance was created
  std::wstring m_strSiteListType;   // of the own file; "Client" without one
  std::wstring m_strReserved;       // not used
  // The anchor of AddHTTPSite and the operations like it; null unless a derived class sets it.
  AdvXMLParser::Element* m_pSiteListElement;
  // All settings that were read or set since the instance was created; never cleared.
  std::map<std::wstring, std::wstring> m_policySettings;
  std::int32_t m_iManagedOverride;  // the last value of SetManagedOverride
  std::int32_t m_iReserved;         // not used
  std::int32_t m_bUseDecryptData;   // 1: decrypt with the server key

 public:
  // The list cached in this process, or null. It belongs to the class. SmartReadSiteList states the
  // rules for its use.
  static tag_Site* m_pSiteList;
  // Its change counter: 1 after a read, plus 1 for each needToUpdateInMemSiteList.
  static std::int32_t m_iChange;
};

}  // namespace sitehlp

#endif
