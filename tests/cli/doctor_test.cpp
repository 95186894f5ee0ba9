#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/cli/doctor_fixture.h"
#include "tests/support/locker.h"

// Each test plants one fault in an agent and expects that exactly one check finds it.
namespace test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::SizeIs;

const char* const c_runFix = "run `sitelist doctor --fix`";

TEST_F(CliDoctor, FindsNoFaultInAHealthyAgent) {
  expectHealthy();
  const Output output = sitelist({"doctor"});
  EXPECT_EQ(output.status, 0);
  EXPECT_THAT(output.out, HasSubstr("ok       settings      agent.toml is valid"));
  EXPECT_THAT(output.out, HasSubstr("\n0 failures, 0 warnings\n"));
  EXPECT_EQ(output.err, "");
}

TEST_F(CliDoctor, MakesAllChecksInTheOrderOfItsHelp) {
  const Output help = sitelist({"doctor", "--help"});
  std::size_t at = 0;
  for (const std::string& check : doctor(0).column("check")) {
    const std::size_t next = help.out.find("\n  " + check + " ");
    ASSERT_NE(next, std::string::npos) << check;
    EXPECT_GT(next, at) << check;
    at = next;
  }
}

TEST_F(CliDoctor, NeedsAnAgent) {
  const Output output = bare({"--agent-dir", file("none"), "doctor"});
  EXPECT_EQ(output.status, 4);
  EXPECT_THAT(output.err, HasSubstr("the agent's data directory does not exist"));
}

class CliDoctorSettings : public CliDoctor {
 protected:
  // Keeps the mode of the file.
  void setSettings(const std::string& text) { setBytes(file("agent/agent.toml"), text); }
};

TEST_F(CliDoctorSettings, MustBeValid) {
  setSettings("managed = true\nmesh.load_command = [\"/bin/sh\"]\nhistori = 2\n");
  const JsonReport report = doctor(1);
  const auto rows = resultsOf(report, "settings");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].at("state"), "failure");
  EXPECT_THAT(rows[0].at("text"),
              AllOf(HasSubstr("agent.toml:3:1: unknown setting histori; did you mean history?"),
                    HasSubstr("use the default settings")));
  EXPECT_EQ(rows[0].at("file"), file("agent/agent.toml"));
  setSettings("history = 10001\n");
  EXPECT_THAT(resultsOf(doctor(1), "settings")[0].at("text"),
              HasSubstr("history must be from 0 to 10000"));
}

TEST_F(CliDoctorSettings, AreTheDefaultsWithoutAFile) {
  ASSERT_EQ(::unlink(file("agent/agent.toml").c_str()), 0);
  const auto rows = resultsOf(doctor(0), "settings");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].at("state"), "warning");
  EXPECT_THAT(rows[0].at("next"), HasSubstr("sitelist init"));
}

TEST_F(CliDoctorSettings, MustNameAnExistingDirectoryForTheMeshCopy) {
  setSettings(
      "managed = true\nmesh.site_list_path = \"none/copy.xml\"\n"
      "mesh.load_command = [\"/bin/sh\"]\n");
  const auto rows = resultsOf(doctor(1), "settings");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_THAT(rows[0].at("text"), HasSubstr("cannot be used: none/: No such file or directory"));
}

TEST_F(CliDoctorSettings, NameALoadCommandThatCanBeRun) {
  const std::string program = write("agent/load", "#!/bin/sh\n");
  setSettings("managed = true\nmesh.load_command = [\"load\"]\n");
  expectOnly("load-command", "failure",
             "cannot run the load command " + program + ": Permission denied",
             "make the program executable");
  ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
  expectHealthy();
  ASSERT_EQ(::unlink(program.c_str()), 0);
  expectOnly("load-command", "failure", program + ": No such file or directory",
             "correct mesh.load_command");
  fs::create_directory(program);
  expectOnly("load-command", "failure", program + ": Permission denied", "");
  setSettings("managed = true\n");
  expectOnly("load-command", "warning", "no load command is set", "set mesh.load_command");
}

TEST_F(CliDoctorSettings, TheLoadCommandIsNotRun) {
  const std::string program = write("agent/load", "#!/bin/sh\ntouch '" + file("ran") + "'\n");
  ASSERT_EQ(::chmod(program.c_str(), 0755), 0);
  setSettings("managed = true\nmesh.load_command = [\"load\"]\n");
  expectHealthy();
  EXPECT_FALSE(exists(file("ran")));
}

class CliDoctorKey : public CliDoctor {
 protected:
  std::string key() const { return file("agent/keystore/password.key"); }
};

TEST_F(CliDoctorKey, ThatIsMissingIsNotCreated) {
  ASSERT_EQ(::unlink(key().c_str()), 0);
  expectOnly("password-key", "failure",
             "the password key is missing, and these have passwords: site \"Depot\"",
             "restore the key from a backup");
  EXPECT_FALSE(exists(key()));
  setBothLists(document(serverSite()));
  expectOnly("password-key", "warning", "the first password creates one", "from a backup");
  EXPECT_FALSE(exists(key()));
}

TEST_F(CliDoctorKey, ThatIsForeignIsFoundWithTheSites) {
  setBytes(key(), "another key with thirty-two bytes");
  expectOnly("password-key", "failure", "the file has more than 32 bytes", "restore");
  setBytes(key(), "another key of thirty-two bytes!");
  expectOnly("password-key", "failure", "does not decrypt the passwords of site \"Depot\"",
             "restore");
}

TEST_F(CliDoctorKey, IsNeverShownAndNorArePasswords) {
  setBytes(key(), "another key of thirty-two bytes!");
  for (const char* format : {"table", "json", "csv", "xml"}) {
    const Output output = sitelist({"doctor", "--format", format});
    EXPECT_THAT(output.out + output.err, AllOf(Not(HasSubstr("thirty")), Not(HasSubstr("fair"))));
  }
}

TEST_F(CliDoctor, FindsAListThatIsNotWellFormed) {
  setBothLists("<a>\n<b>");
  const auto rows = resultsOf(doctor(1), "list");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_THAT(rows[0].at("text"), HasSubstr("etc/SiteList.xml:2:4: not-well-formed: "));
  EXPECT_THAT(rows[0].at("next"), HasSubstr("sitelist explain-rule not-well-formed"));
}

TEST_F(CliDoctor, FindsAListWithoutSitesOnlyInAManagedAgent) {
  setBothLists(document(""));
  expectOnly("list", "failure", "no-sites: the list has no sites; 1 more error",
             "sitelist validate " + ownList());
  setBytes(file("agent/agent.toml"), "mesh.load_command = [\"/bin/sh\"]\n");
  expectOnly("list", "warning", "the list has no sites", "sitelist validate --unmanaged");
}

TEST_F(CliDoctor, FindsAnAgentWithoutAList) {
  ASSERT_EQ(::unlink(ownList().c_str()), 0);
  expectOnly("list", "failure", "the agent has no list yet", "sitelist import");
}

TEST_F(CliDoctor, FindsAFileThatIsNotASiteList) {
  setBothLists("<other/>");
  const auto rows = resultsOf(doctor(1), "list");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].at("text"), "etc/SiteList.xml is not a site list");
}

TEST_F(CliDoctor, CountsTheWarningsOfTheList) {
  setBothLists(
      list(siteElement("HttpSite", "a", "2", "Server=\"a.example\" Enabled=\"1\" Ordre=\"1\"")));
  const auto rows = resultsOf(doctor(0), "list");
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(rows[0].at("state"), "warning");
  EXPECT_THAT(rows[0].at("text"), HasSubstr("; 1 more warning"));
}

TEST_F(CliDoctor, FindsAListWithoutVersions) {
  setBothLists(document(serverSite(), "", ""));
  for (const auto& row : resultsOf(doctor(0), "versions")) EXPECT_EQ(row.at("state"), "warning");
  setBothLists(list());
  EXPECT_EQ(resultsOf(doctor(0), "versions")[0].at("text"),
            "global \"20260101000000\", local \"20260102000000\"");
}

TEST_F(CliDoctor, FindsAMeshCopyThatDiffers) {
  setBytes(meshCopy(), "stale");
  expectOnly("mesh-copy", "failure", "the mesh copy differs from the list: mesh/SiteList.xml",
             c_runFix);
  ASSERT_EQ(::unlink(meshCopy().c_str()), 0);
  expectOnly("mesh-copy", "failure", "there is no mesh copy", c_runFix);
}

class CliDoctorKeyFiles : public CliDoctor {
 protected:
  void setServer(const std::string& version) {
    setBothLists(document(serverSite({{"Version", version}})));
  }
  void putKeys(const std::vector<std::string>& names, const std::string& bytes = "key") {
    for (const std::string& name : names) {
      ASSERT_EQ(::chmod(write("agent/etc/" + name, bytes).c_str(), 0600), 0);
    }
  }
};

TEST_F(CliDoctorKeyFiles, AreACompleteSetForAServerWithAVersion) {
  setServer("5.9.1");
  expectOnly("key-files", "failure",
             "no set of key files is complete; missing: srpubkey.bin, reqseckey.bin, "
             "sr2048pubkey.bin, req2048seckey.bin",
             "import the list again");
  putKeys({"srpubkey.bin", "req2048seckey.bin"});
  expectOnly("key-files", "failure", "missing: reqseckey.bin, sr2048pubkey.bin", "");
  putKeys({"sr2048pubkey.bin"}, "");
  expectOnly("key-files", "failure", "sr2048pubkey.bin (it is empty)", "");
  putKeys({"sr2048pubkey.bin"});
  expectOnly("key-files", "warning", "srpubkey.bin belongs to a set whose other file", "");
  putKeys({"reqseckey.bin"});
  expectHealthy();
}

TEST_F(CliDoctorKeyFiles, OfAServerWithAVersionAreSuperfluousForAnother) {
  setServer("");
  putKeys({"srpubkey.bin"});
  expectHealthy();
  putKeys({"reqseckey.bin"});
  expectOnly("key-files", "warning", "reqseckey.bin belongs to a server with a version", "");
}

class CliDoctorCertificates : public CliDoctor {
 protected:
  void setCertificate(const std::string& pem) {
    setBothLists(list("", "<CaBundle><CaCertificate>" + pem + "</CaCertificate></CaBundle>"));
  }
  std::string certificateFor(int days) {
    const Output made = shell(
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -subj /CN=Test "
        "-keyout key.pem -out cert.pem -days " +
        std::to_string(days));
    EXPECT_EQ(made.status, 0) << made.err;
    return readFile(file("cert.pem"));
  }
};

TEST_F(CliDoctorCertificates, ExpireOnlyAfterThirtyDays) {
  setCertificate(c_expiredCertificatePem);
  expectOnly("certificates", "failure", "certificate 1 expired on 2002-01-01", "import a list");
  setCertificate(certificateFor(10));
  expectOnly("certificates", "warning", "certificate 1 expires on ", "import a list");
  setCertificate(certificateFor(60));
  expectHealthy();
  setCertificate("no certificate");
  expectOnly("certificates", "warning", "its expiry is unknown", "sitelist certs");
}

TEST_F(CliDoctor, FindsAnUnreadableListOfTheHistory) {
  fs::create_directory(file("agent/etc/history"));
  fs::permissions(file("agent/etc/history"), fs::perms(0750));
  const std::string entry = write("agent/etc/history/1-20260101T000000Z-import.xml", list());
  ASSERT_EQ(::chmod(entry.c_str(), 0640), 0);
  expectHealthy();
  setBytes(entry, "<broken");
  expectOnly("history", "warning", "1-20260101T000000Z-import.xml cannot be read as a list",
             "remove it");
  setBytes(entry, list());
  // The largest number of a process is smaller.
  const std::string pending =
      write("agent/etc/history/pending999999999-20260101T000000Z-import.xml", list());
  ASSERT_EQ(::chmod(pending.c_str(), 0640), 0);
  const auto rows = resultsOf(doctor(0), "history");
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_EQ(rows[0].at("state"), "warning");
  EXPECT_EQ(rows[0].at("text"),
            "a command ended before it had completed the history; the next change of the list "
            "completes it");
  EXPECT_EQ(rows[0].count("next"), 0U);
}

TEST_F(CliDoctor, FindsTheWrongOrderOfTheVendorRepositories) {
  const auto vendors = [this](const char* http, const char* ftp) {
    setBothLists(list(siteElement("HttpSite", "WexHttp", http,
                                  "Enabled=\"1\" Type=\"repository\" "
                                  "Server=\"update.wex.example:80\"") +
                      siteElement("FTPSite", "WexFtp", ftp,
                                  "Enabled=\"1\" Type=\"repository\" "
                                  "Server=\"ftp.wex.example:21\"")));
  };
  vendors("3", "4");
  expectHealthy();
  vendors("4", "3");
  expectOnly("vendor-order", "warning",
             "the vendor repository over FTP (WexFtp) comes before the one over HTTP (WexHttp)",
             "sitelist edit");
}

class CliDoctorLocks : public CliDoctor {};

TEST_F(CliDoctorLocks, ThatAreHeldAreReportedWithTheirProcess) {
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Locker::Mode::Write));
  const auto before = states();
  const Output output = sitelist({"doctor", "--wait", "2"});
  EXPECT_EQ(output.status, 1);
  EXPECT_EQ(states(), before);
  EXPECT_THAT(output.err,
              HasSubstr("sitelist: waiting at most 2 s for the lock SiteListLock, held by "));
#ifdef __linux__
  EXPECT_THAT(output.out,
              HasSubstr("failure  locks         the lock SiteListLock has been held for at "
                        "least 2 s by process " +
                        std::to_string(other.process().pid()) + " (test_cli, "));
#endif
  EXPECT_THAT(output.out, HasSubstr("the lock SiteListLock has been held for at least 2 s by "));
  const Output now = sitelist({"doctor", "--wait", "0"});
  EXPECT_EQ(now.status, 1);
  EXPECT_EQ(now.err, "") << "it does not wait";
  other.unlock(Locker::Mode::Write);
  expectHealthy();
}

TEST_F(CliDoctorLocks, AreWaitedForUntilTheyAreFree) {
  Locker other(file("agent"));
  ASSERT_TRUE(other.lock(Locker::Mode::Read));
  const Output output = withTerminalForMessages({"doctor"}, "sitelist: waiting at most 60 s",
                                                [&] { other.unlock(Locker::Mode::Read); });
  EXPECT_EQ(output.status, 0) << output.out;
  EXPECT_THAT(output.out, HasSubstr("0 failures"));
}

TEST_F(CliDoctorLocks, ThatReadersHoldInTurnAreNotBlocked) {
#ifdef __linux__
  Locker first(file("agent"));
  Locker second(file("agent"));
  ASSERT_TRUE(first.lock(Locker::Mode::Read));
  const Output output = withTerminalForMessages({"doctor"}, "sitelist: waiting at most", [&] {
    ASSERT_TRUE(second.lock(Locker::Mode::Read));
    first.unlock(Locker::Mode::Read);
  });
  EXPECT_EQ(output.status, 0) << output.out;
#endif
}

TEST_F(CliDoctorLocks, HaveGatesThatAreReportedAsSuch) {
  const std::string gate = file("agent/locks/SiteListLock.gate");
  const int fd = ::open(gate.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(fd, LOCK_EX), 0);
  const auto rows = resultsOf(doctor(1, {"--wait", "0"}), "locks");
  ::close(fd);
  ASSERT_THAT(rows, SizeIs(1));
  EXPECT_THAT(rows[0].at("text"), HasSubstr("the gate of the lock SiteListLock is held by "));
  EXPECT_EQ(rows[0].at("file"), gate);
}

TEST_F(CliDoctorLocks, AreNotCreated) {
  fs::remove_all(file("agent/locks"));
  const auto before = states();
  expectHealthy();
  EXPECT_EQ(states(), before);
}

#ifdef INTERPOSER
TEST_F(CliDoctor, FindsAFileSystemWithoutFreeSpace) {
  const auto with = [this](const char* kilobytes) {
    return shell("FREE_KILOBYTES=" + std::string(kilobytes) +
                 " LD_PRELOAD='" INTERPOSER "' \"$0\" --agent-dir agent doctor");
  };
  const Output full = with("100");
  EXPECT_EQ(full.status, 1);
  EXPECT_THAT(full.out, HasSubstr("failure  free-space    the file system of "));
  EXPECT_THAT(full.out, HasSubstr("has too little free space to write the list: 100 KiB\n"));
  const Output low = with("20480");
  EXPECT_EQ(low.status, 0);
  EXPECT_THAT(low.out, HasSubstr("warning  free-space"));
  EXPECT_THAT(low.out, HasSubstr("has only 20 MiB free\n"));
  const Output few =
      shell("FREE_FILES=15 LD_PRELOAD='" INTERPOSER "' \"$0\" --agent-dir agent doctor");
  EXPECT_EQ(few.status, 1);
  EXPECT_THAT(few.out, HasSubstr("has room for only 15 more files\n"));
  EXPECT_EQ(with("70000").status, 0);
  EXPECT_THAT(with("70000").out, HasSubstr("0 failures, 0 warnings"));
}
#endif

TEST_F(CliDoctor, FitsItsScreen) {
  setBytes(meshCopy(), "stale");
  for (const int columns : {80, 160}) {
    const Output output = onTerminal(columns, {"doctor"});
    EXPECT_EQ(output.status, 1);
    std::istringstream lines(output.out);
    for (std::string line; std::getline(lines, line);) {
      EXPECT_LE(line.size(), static_cast<std::size_t>(columns) + 12) << line;  // with its colour
    }
  }
}

TEST_F(CliDoctor, PrintsNothingIfItIsQuiet) {
  const Output output = sitelist({"--quiet", "doctor"});
  EXPECT_EQ(output.status, 0);
  EXPECT_EQ(output.out + output.err, "");
}

}  // namespace
}  // namespace test
