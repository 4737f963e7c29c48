#include "keychain/keychain_vault.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <qt6keychain/keychain.h>

namespace lomarin {
namespace {

const QString kService = QStringLiteral("Lomarin for MySQL");
// A locked keychain may wait on a prompt nobody sees; give up rather than hang.
constexpr int kAnswerTimeoutMs = 5000;

struct Answer {
  QKeychain::Error error = QKeychain::OtherError;
  QString text;
};

// Runs the job to its end; a job that does not answer in time is left to finish on its own.
Answer run(QKeychain::Job* job, const std::string& key) {
  job->setKey(QString::fromStdString(key));
  Answer answer;
  bool done = false;
  QEventLoop loop;
  QObject::connect(job, &QKeychain::Job::finished, &loop, [&](QKeychain::Job* finished) {
    done = true;
    answer.error = finished->error();
    if (auto* read = qobject_cast<QKeychain::ReadPasswordJob*>(finished)) answer.text = read->textData();
    loop.quit();
  });
  QTimer::singleShot(kAnswerTimeoutMs, &loop, &QEventLoop::quit);
  job->start();
  if (!done) loop.exec();
  return answer;
}

}  // namespace

bool KeychainVault::available() {
  if (!available_) {
    bool answers = false;
    if (QCoreApplication::instance()) {
      const QKeychain::Error error = run(new QKeychain::ReadPasswordJob(kService), "\\probe").error;
      answers = error == QKeychain::NoError || error == QKeychain::EntryNotFound;
    }
    available_ = answers;
  }
  return *available_;
}

std::optional<std::string> KeychainVault::read(const std::string& key) {
  const Answer answer = run(new QKeychain::ReadPasswordJob(kService), key);
  if (answer.error == QKeychain::EntryNotFound) return std::string();
  if (answer.error != QKeychain::NoError) return std::nullopt;
  return answer.text.toStdString();
}

bool KeychainVault::write(const std::string& key, const std::string& secret) {
  auto* job = new QKeychain::WritePasswordJob(kService);
  job->setTextData(QString::fromStdString(secret));
  return run(job, key).error == QKeychain::NoError;
}

bool KeychainVault::remove(const std::string& key) {
  const QKeychain::Error error = run(new QKeychain::DeletePasswordJob(kService), key).error;
  return error == QKeychain::NoError || error == QKeychain::EntryNotFound;
}

}  // namespace lomarin
