#pragma once

#include <QDir>
#include <string>

#include "app/shell_test_support.h"
#include "engine/app/option_names.h"
#include "engine/connect/ssh_key_store.h"
#include "test_ssh_server.h"

namespace lomarin::test {

// Gives the fresh user a client key, kept in the folder its settings name, that the test SSH
// server accepts; returns the user's key store.
inline TSshKeyStore addAuthorizedKey(FreshSettings& fresh, const std::string& name) {
  const std::string folder = QDir(fresh.dir.path()).filePath("keys").toStdString();
  fresh.store->write(opt::CertificatesPath, folder);
  const TSshKeyStore keys(folder);
  keys.newClientKey(name, TSshKeyType::Ed25519);
  authorizeKey(keys.publicLine(name));
  return keys;
}

}  // namespace lomarin::test
