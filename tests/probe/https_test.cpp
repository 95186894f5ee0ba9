#include "tests/probe/probe_fixture.h"

// The port for secure connections. Its certificate is compared with those of the list.
namespace test {
namespace {

using testing::HasSubstr;

class ProbeHttps : public ProbeTest {
 protected:
  JsonReport::Record probePort(int port, const std::string& authority) {
    Entry made;
    made.element = "VestaSite";
    made.server = local(web.port());
    made.securePort = std::to_string(port);
    return probeSite(made, authority);
  }
  void expectFault(int port, const std::string& fault) {
    JsonReport::Record site = probePort(port, web.authority());
    EXPECT_EQ(site["state"], "failed") << output.out;
    EXPECT_EQ(site["answer"], "200 OK");
    EXPECT_EQ(site["secureOk"], "false");
    EXPECT_EQ(site["certificateTrusted"], "false");
    EXPECT_EQ(site["certificateFaults"], fault);
    EXPECT_THAT(site["error"], HasSubstr("is not trusted: " + fault));
  }

  WebServer web{file("")};
};

TEST_F(ProbeHttps, ACertificateOfAnAuthorityOfTheListIsTrusted) {
  JsonReport::Record site = probePort(web.validPort(), web.authority());
  EXPECT_EQ(site["state"], "ok") << output.out;
  EXPECT_EQ(site["secureOk"], "true");
  EXPECT_EQ(site["certificateTrusted"], "true");
  EXPECT_EQ(site["certificateSubject"], "CN = depot.example");
  EXPECT_EQ(site["certificateIssuer"], "CN = Probe authority");
  EXPECT_EQ(site["certificateDaysLeft"], "30");
  EXPECT_EQ(site.count("certificateFaults"), 0U);
}

TEST_F(ProbeHttps, AnExpiredCertificateIsNotTrusted) {
  expectFault(web.expiredPort(), "it has expired");
}

TEST_F(ProbeHttps, ACertificateForAnotherNameIsNotTrusted) {
  expectFault(web.wrongNamePort(), "it is not for the address 127.0.0.1");
}

TEST_F(ProbeHttps, ASelfSignedCertificateIsNotTrusted) {
  expectFault(web.selfSignedPort(), "it is self-signed and not in the list");
}

TEST_F(ProbeHttps, ACertificateOfAnotherAuthorityIsNotTrusted) {
  expectFault(web.strangerPort(), "no CA certificate of the list has issued it");
}

TEST_F(ProbeHttps, NothingIsTrustedIfTheListHasNoCertificate) {
  JsonReport::Record site = probePort(web.validPort(), "");
  EXPECT_EQ(site["certificateFaults"], "the list has no CA certificate");
}

TEST_F(ProbeHttps, ACertificateOfTheListIsTrustedItself) {
  const std::string own = readFile(file("selfSigned.pem"));
  const std::string end = "-----END CERTIFICATE-----";
  JsonReport::Record site =
      probePort(web.selfSignedPort(), own.substr(0, own.find(end) + end.size()));
  EXPECT_EQ(site["state"], "ok") << output.out;
}

TEST_F(ProbeHttps, AnExpiredAuthorityOfTheListIsReported) {
  JsonReport::Record site = probePort(web.validPort(), c_expiredCertificatePem);
  EXPECT_EQ(site["certificateFaults"], "no CA certificate of the list has issued it");
}

TEST_F(ProbeHttps, APortWithoutTlsFails) {
  JsonReport::Record site = probePort(web.port(), web.authority());
  EXPECT_EQ(site["state"], "failed");
  EXPECT_EQ(site["secureOk"], "false");
  EXPECT_EQ(site.count("certificateSubject"), 0U);
  EXPECT_THAT(site["error"], HasSubstr("the TLS handshake"));
}

TEST_F(ProbeHttps, TheSecurePortIsTriedEvenIfTheOtherFails) {
  Entry made;
  made.server = local(freePorts(1)[0]);
  made.securePort = std::to_string(web.validPort());
  JsonReport::Record site = probeSite(made, web.authority());
  EXPECT_EQ(site["state"], "failed");
  EXPECT_EQ(site["secureOk"], "true");
  EXPECT_THAT(site["error"], HasSubstr("Connection refused"));
}

}  // namespace
}  // namespace test
