#include <gtest/gtest.h>

#include <filesystem>

#include "service/RunningService.h"
#include "service/TestCertificate.h"

namespace quillmarch::service {

namespace {

class Tls : public testing::Test {
 protected:
  ServiceOptions Options() const {
    ServiceOptions options;
    options.certificateFile = certificate.certificateFile;
    options.keyFile = certificate.keyFile;
    return options;
  }
  static std::string Url(const RunningService& running, const char* host = "localhost") {
    return std::string("https://") + host + ":" + std::to_string(running.port()) + "/v1/translate";
  }
  TempFolder folder;
  TestCertificate certificate = MakeTestCertificate(folder, "ours");
};

}  // namespace

TEST_F(Tls, TranslatesForAClientThatTrustsTheCertificate) {
  const RunningService running(Options());
  const HttpReply reply =
      HttpRequest("POST", Url(running, "127.0.0.1"), kOneText, {}, certificate.certificateFile);
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.body, R"({"translations":["Plan"]})");
}

TEST_F(Tls, LargeBodiesAndAnswersPass) {
  const RunningService running(Options());
  const std::string text(3'000'000, 'x');
  const HttpReply reply = HttpRequest("POST", Url(running, "127.0.0.1"),
                                      R"({"texts":[")" + text + R"("],"targetLang":"es"})", {},
                                      certificate.certificateFile);
  EXPECT_TRUE(reply.arrived);
  EXPECT_EQ(reply.body, R"({"translations":[")" + text + R"("]})");
}

TEST_F(Tls, AClientThatDoesNotTrustItGetsNothing) {
  RunningService running(Options());
  EXPECT_FALSE(HttpRequest("POST", Url(running, "127.0.0.1"), kOneText).arrived);
  EXPECT_TRUE(running.StopAndGetLog().empty());
}

TEST_F(Tls, PlainHttpIsToldToUseTls) {
  const RunningService running(Options());
  const HttpReply reply = running.Post(kOneText);
  EXPECT_EQ(reply.status, 400);
  EXPECT_EQ(reply.body,
            R"({"code":"tls_required","message":"This port speaks TLS: use https://."})");
}

TEST_F(Tls, ANewCertificateIsUsedAfterAReload) {
  const RunningService running(Options());
  const auto ask = [&](const TestCertificate& trusted) {
    return HttpRequest("POST", Url(running, "127.0.0.1"), kOneText, {}, trusted.certificateFile)
        .status;
  };
  EXPECT_EQ(ask(certificate), 200);
  const TestCertificate other = MakeTestCertificate(folder, "other");
  std::filesystem::copy_file(other.certificateFile, certificate.certificateFile,
                             std::filesystem::copy_options::overwrite_existing);
  EXPECT_FALSE(running.service->Reload()) << "the key belongs to the old one";
  std::filesystem::copy_file(other.keyFile, certificate.keyFile,
                             std::filesystem::copy_options::overwrite_existing);
  ASSERT_TRUE(running.service->Reload());
  EXPECT_EQ(ask(other), 200);
}

TEST_F(Tls, ASilentClientDoesNotHoldUpTheStop) {
  const RunningService running(Options());
  const RawConnection silent(running.port());
  EXPECT_EQ(
      HttpRequest("POST", Url(running, "127.0.0.1"), kOneText, {}, certificate.certificateFile)
          .status,
      200);
  running.service->Stop();
  EXPECT_EQ(silent.ReadToEnd(), "");
}

TEST_F(Tls, FilesThatDoNotBelongTogetherAreRefused) {
  const TestCertificate other = MakeTestCertificate(folder, "other");
  const auto start = [&](const std::string& certificateFile, const std::string& keyFile) {
    ServiceOptions options;
    options.certificateFile = certificateFile;
    options.keyFile = keyFile;
    const auto started = Service::Start(options, std::make_unique<ScriptedEngine>(Echo));
    return started ? "" : started.error().words;
  };
  EXPECT_NE(start(certificate.certificateFile, other.keyFile).find("other.key"), std::string::npos);
  EXPECT_NE(start(folder.Path("none"), certificate.keyFile).find("none"), std::string::npos);
  EXPECT_NE(start(certificate.certificateFile, "").find("both"), std::string::npos);
}

}  // namespace quillmarch::service
