#include "engine/connect/ssh_key_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <fstream>

#include "engine/connect/ssh_error.h"
#include "test_ssh_server.h"

namespace lomarin {
namespace {

namespace fs = std::filesystem;

unsigned mode(const fs::path& path) {
  struct stat info {};
  ::stat(path.c_str(), &info);
  return info.st_mode & 0777;
}

std::string firstLine(const fs::path& file) {
  std::string line;
  std::getline(std::ifstream(file), line);
  return line;
}

TEST(SshKeyStore, NewKeysAreListedPrivateAndGiveTheirPublicLine) {
  test::TempFolder temp;
  const TSshKeyStore store(temp.path() / "store");
  store.newClientKey("work", TSshKeyType::Ed25519);
  store.newClientKey("legacy box", TSshKeyType::Rsa3072);

  EXPECT_EQ(store.clientKeyNames(), (std::vector<std::string>{"legacy box", "work"}));
  EXPECT_EQ(mode(temp.path() / "store"), 0700u);
  EXPECT_EQ(mode(temp.path() / "store" / "client keys"), 0700u);
  EXPECT_EQ(mode(store.clientKeyFile("work")), 0600u);
  EXPECT_EQ(mode(store.clientKeyFile("legacy box")), 0600u);

  const std::string ed = store.publicLine("work");
  EXPECT_EQ(ed.rfind("ssh-ed25519 AAAA", 0), 0u) << ed;
  EXPECT_TRUE(ed.ends_with(" work")) << ed;
  EXPECT_EQ(store.publicLine("legacy box").rfind("ssh-rsa AAAA", 0), 0u);
  EXPECT_EQ(store.fingerprint("work").rfind("SHA256:", 0), 0u);
  EXPECT_NE(store.fingerprint("work"), store.fingerprint("legacy box"));
}

TEST(SshKeyStore, RefusesTakenAndUnusableNamesAndDeletes) {
  test::TempFolder temp;
  const TSshKeyStore store(temp.path());
  store.newClientKey("work", TSshKeyType::Ed25519);
  const std::string before = store.publicLine("work");
  EXPECT_THROW(store.newClientKey("work", TSshKeyType::Ed25519), TSshError);
  EXPECT_EQ(store.publicLine("work"), before);
  for (const char* name : {"", "a/b", ".hidden", "..", "line\nbreak"})
    EXPECT_THROW(store.newClientKey(name, TSshKeyType::Ed25519), TSshError) << name;
  EXPECT_FALSE(store.hasClientKey("../store"));

  store.deleteClientKey("work");
  EXPECT_TRUE(store.clientKeyNames().empty());
  EXPECT_THROW(store.deleteClientKey("work"), TSshError);
}

TEST(SshKeyStore, ImportsAPassphraseProtectedOpenSshKey) {
  test::TempFolder temp;
  const fs::path file = temp.path() / "id_ed25519";
  const std::string command =
      "ssh-keygen -q -t ed25519 -N 'open sesame' -C imported -f '" + file.string() + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  const TSshKeyStore store(temp.path() / "store");

  int asked = 0;
  EXPECT_FALSE(store.importClientKey("laptop", file, [&] {
    ++asked;
    return std::optional<std::string>();
  }));
  EXPECT_EQ(asked, 1);
  EXPECT_FALSE(store.hasClientKey("laptop"));
  EXPECT_THROW(store.importClientKey("laptop", file, [] { return std::optional<std::string>("wrong"); }),
               TSshError);
  EXPECT_FALSE(store.hasClientKey("laptop"));

  ASSERT_TRUE(
      store.importClientKey("laptop", file, [] { return std::optional<std::string>("open sesame"); }));
  EXPECT_EQ(mode(store.clientKeyFile("laptop")), 0600u);
  // The same key as the file's public half, under the name the user gave it.
  const std::string original = firstLine(file.string() + ".pub");
  const std::string imported = store.publicLine("laptop");
  EXPECT_EQ(imported.substr(0, imported.rfind(' ')), original.substr(0, original.rfind(' ')));
  EXPECT_TRUE(imported.ends_with(" laptop"));
}

TEST(SshKeyStore, ImportOfAKeyWithoutPassphraseAsksNothingAndRefusesOtherFiles) {
  test::TempFolder temp;
  const fs::path file = temp.path() / "id_rsa";
  ASSERT_EQ(std::system(("ssh-keygen -q -t rsa -b 2048 -N '' -f '" + file.string() + "'").c_str()), 0);
  const TSshKeyStore store(temp.path() / "store");
  const auto never = []() -> std::optional<std::string> {
    ADD_FAILURE() << "asked for a passphrase";
    return std::nullopt;
  };
  EXPECT_TRUE(store.importClientKey("plain", file, never));
  EXPECT_EQ(store.publicLine("plain").rfind("ssh-rsa ", 0), 0u);
  EXPECT_THROW(store.importClientKey("public half", file.string() + ".pub", never), TSshError);
  EXPECT_FALSE(store.hasClientKey("public half"));
}

}  // namespace
}  // namespace lomarin
