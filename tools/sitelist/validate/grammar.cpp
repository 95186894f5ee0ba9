#include "tools/sitelist/validate/grammar.h"

#include <algorithm>

#include "sitehlp/xmlschema/sitelist.h"

namespace tool {

using namespace korvel_com::orb::xmlschema::sitelist;  // NOLINT(google-build-using-namespace)

namespace {

using Values = std::vector<ValueForm>;

Values operator+(Values all, const Values& more) {
  all.insert(all.end(), more.begin(), more.end());
  return all;
}

// In the order of docs/site-list-format.md.
std::vector<ElementForm> makeForms() {
  const Values common = {{WX_XML_SITE_TYPE, Form::Text},    {WX_XML_SITE_NAME, Form::Text},
                         {WX_XML_SITE_ORDER, Form::Order},  {WX_XML_SITE_ENABLED, Form::Flag},
                         {WX_XML_SITE_LOCAL, Form::Flag},   {WX_XML_SITE_ID, Form::Unread},
                         {WX_XML_SERVER_PORT, Form::Unread}};
  const Values replication = {{WX_XML_HTTPSITE_REPLICATION_UNC, Form::Unread},
                              {WX_XML_SITE_REPLICATION_USER_NAME, Form::Unread},
                              {WX_XML_SITE_REPLICATION_DOMAIN_NAME, Form::Unread},
                              {WX_XML_SITE_REPLICATION_PASSWORD, Form::Unread}};
  const Values attributes = common + replication;
  const Values http =
      attributes +
      Values{{WX_XML_SITE_SERVER, Form::Address},
             {WX_XML_SERVER_NETBIOS_NAME, Form::ComputerName, sitehlp::c_netbiosCapacity},
             {WX_XML_SITE_SERVER_IP, Form::Address, sitehlp::c_serverIpCapacity},
             {WX_XML_SSL_PORT, Form::Port}};
  const Values children =
      replication + Values{{WX_XML_SITE_RELATIVEPATH, Form::Text, sitehlp::c_pathCapacity},
                           {WX_XML_SITE_USER_NAME, Form::Text},
                           {WX_XML_SITE_PASSWORD, Form::Password}};
  const Values httpChildren = children + Values{{WX_XML_HTTPSITE_USE_AUTH, Form::Flag}};
  const Values fileChildren =
      children + Values{{WX_XML_SITE_DOMAIN_NAME, Form::Text},
                        {WX_XML_UNCSITE_USE_LOGON_USER_ACCOUNT, Form::Flag}};
  const Values passive = {{WX_XML_FTPSITE_PASSIVE, Form::Unread}};
  return {
      {WX_XML_CABUNDLE, nullptr, {}, {{WX_XML_CACERTIFICATE, Form::Elements}}},
      {WX_XML_POLICIES, nullptr, {}, {{L"Setting", Form::Elements}}},
      {L"Setting", nullptr, {{L"name", Form::Any}}, {}},
      {WX_XML_SITELIST,
       nullptr,
       {{WX_XML_SITELIST_DEFAULT, Form::Unread}, {WX_XML_SITE_NAME, Form::Unread}},
       {}},
      {WX_XML_SITELIST_HTTP_SITE, "http", http, httpChildren},
      {WX_XML_SITELIST_VESTA_SITE, "server",
       http + Values{{WX_XML_SITE_SERVER_VERSION, Form::Text}}, httpChildren},
      {WX_XML_SITELIST_KEYSTONE_SITE, "agent",
       http + Values{{WX_XML_SITE_SERVER_FQDN, Form::Address}}, httpChildren},
      {WX_XML_SITELIST_FTP_SITE, "ftp",
       attributes + passive +
           Values{{WX_XML_SITE_SERVER, Form::Address}, {WX_XML_SSL_PORT, Form::Port}},
       children + passive},
      {WX_XML_SITELIST_UNC_SITE, "unc", attributes + Values{{WX_XML_SITE_SERVER, Form::Text}},
       fileChildren + Values{{WX_XML_UNCSITE_SHARENAME, Form::Text}}},
      {WX_XML_SITELIST_LOCAL_SITE, "local", attributes + Values{{WX_XML_SITE_SERVER, Form::Unread}},
       fileChildren},
      {WX_XML_PROXY_CONFIG_LIST,
       "proxy",
       common + Values{{WX_XML_PROXY_USE_IE_CONFIG, Form::Flag}},
       {{WX_XML_PROXY_CONFIG, Form::Elements}}},
      {WX_XML_PROXY_CONFIG,
       nullptr,
       {{WX_XML_SITE_NAME, Form::Text},
        {WX_XML_SITE_LOCAL, Form::Unread},
        {WX_XML_PROXY_USE_IE_CONFIG, Form::Flag},
        {WX_XML_PROXY_HTTP_PROXY_SERVER, Form::Text},
        {WX_XML_PROXY_HTTP_PROXY_PORT, Form::Port},
        {WX_XML_PROXY_FTP_PROXY_SERVER, Form::Text},
        {WX_XML_PROXY_FTP_PROXY_PORT, Form::Port}},
       {{WX_XML_PROXY_ALLOWUSERTOCONFIGPROXY, Form::Flag},
        {WX_XML_PROXY_BYPASSLOCALADDR, Form::Flag},
        {WX_XML_PROXY_ADDRLIST, Form::Unread},
        {WX_XML_PROXY_EXCLUSIONLIST, Form::Elements},
        {WX_XML_PROXY_FTP_USEAUTH, Form::Flag},
        {WX_XML_PROXY_HTTP_USEAUTH, Form::Flag},
        {WX_XML_HTTP_PROXY_PROXYUSERNAME, Form::Text},
        {WX_XML_HTTP_PROXY_PROXYPASSWORD, Form::Password},
        {WX_XML_FTP_PROXY_PROXYUSERNAME, Form::Text},
        {WX_XML_FTP_PROXY_PROXYPASSWORD, Form::Password},
        {WX_XML_PROXY_ALT_FTP_USEAUTH, Form::Flag},
        {WX_XML_PROXY_ALT_HTTP_USEAUTH, Form::Flag},
        {WX_XML_HTTP_PROXY_ALT_PROXYUSERNAME, Form::Text},
        {WX_XML_HTTP_PROXY_ALT_PROXYPASSWORD, Form::Password},
        {WX_XML_FTP_PROXY_ALT_PROXYUSERNAME, Form::Text},
        {WX_XML_FTP_PROXY_ALT_PROXYPASSWORD, Form::Password}}},
      {WX_XML_PROXY_EXCLUSIONLIST, nullptr, {}, {{WX_XML_PROXY_EXCLUSIONHOST, Form::Elements}}},
  };
}

}  // namespace

const ElementForm& rootForm() {
  static const ElementForm form = {WX_XML_SITELISTS,
                                   nullptr,
                                   {{WX_XML_SITELISTS_GLOBAL_VERSION, Form::Any},
                                    {WX_XML_SITELISTS_LOCAL_VERSION, Form::Any},
                                    {WX_XML_SITELISTS_TYPE, Form::Any},
                                    {WX_XML_SITELISTS_FIPSMODE, Form::Any}},
                                   {{WX_XML_CABUNDLE, Form::Elements},
                                    {WX_XML_POLICIES, Form::Elements},
                                    {WX_XML_SITELIST, Form::Elements}}};
  return form;
}

const ElementForm* formOf(const AdvXMLParser::Element& element) {
  static const std::vector<ElementForm> forms = makeForms();
  const auto found = std::find_if(forms.begin(), forms.end(), [&](const ElementForm& form) {
    return element.HasName(form.name);
  });
  return found == forms.end() ? nullptr : &*found;
}

const ValueForm* findForm(const std::vector<ValueForm>& forms, const std::wstring& name) {
  const auto found = std::find_if(forms.begin(), forms.end(),
                                  [&](const ValueForm& form) { return name == form.name; });
  return found == forms.end() ? nullptr : &*found;
}

}  // namespace tool
