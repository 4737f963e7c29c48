#pragma once
// Private to the connect subsystem: owning handles of libssh objects.

#include <libssh/libssh.h>

#include <memory>
#include <string>

namespace lomarin {

struct SshKeyFree {
  void operator()(ssh_key key) const { ssh_key_free(key); }
};
using SshKey = std::unique_ptr<ssh_key_struct, SshKeyFree>;

struct SshSessionFree {
  void operator()(ssh_session session) const {
    ssh_disconnect(session);
    ssh_free(session);
  }
};
using SshSession = std::unique_ptr<ssh_session_struct, SshSessionFree>;

// "SHA256:..." as OpenSSH prints a key's fingerprint.
std::string Sha256Fingerprint(ssh_key key);

}  // namespace lomarin
