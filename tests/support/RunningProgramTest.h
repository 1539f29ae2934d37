// SPDX-License-Identifier: MIT
#pragma once

#include "demo/Provider.h"
#include "tests/support/PanelTest.h"
#include "tests/support/ProgramUnderTest.h"

/// The real program with a real provider, observed in the status area and on disk, as by its user.
struct RunningProgramTest : PanelTest {
    static constexpr char const* home = "Home - secretOne";
    static constexpr char const* cottage = "Cottage - secretTwo";

    RunningProgramTest()
    {
        startWatcher();
        program_.setInfo("ProviderHost", provider_->host());
        program_.setInfo("ProviderCertificateAuthority", certificate_.authority);
        provider_->setReport("secretOne", homeReport_);
        provider_->setReport("secretTwo", cottageReport_);
    }

    /// A key must never appear in the output, whatever happens.
    ~RunningProgramTest() override { EXPECT_EQ(program_.output().find("secret"), std::string::npos); }

    /// Gives the program a private display for its next start.
    void startScreen()
    {
        screen_.start(QStringLiteral("Xvfb"), { "-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "1280x800x24" });
        ASSERT_TRUE(screen_.waitForReadyRead()) << "is Xvfb installed?";
        qputenv("DISPLAY", ':' + screen_.readLine().trimmed());
        program_.setVariable("DISPLAY", qgetenv("DISPLAY").constData());
        program_.setVariable("QT_QPA_PLATFORM", "xcb");
    }

    bool waitForTitle(std::string const& title)
    {
        return waitFor([&] { return reader_.hasItem() && reader_.title().toStdString() == title; });
    }

    bool click(char const* text) { return reader_.click(QString::fromUtf8(text), bound); }

    void stop()
    {
        program_.signal(SIGTERM);
        ASSERT_EQ(program_.waitForExit(bound), 0);
        ASSERT_TRUE(waitFor([this] { return !reader_.hasItem(); }));
    }

    std::string const homeReport_ = demo::reportBody(
        { 52'345'678'901, 3'456'789'012, 1'200'000'000, 300'000'000, 53'545'678'901, 3'756'789'012 });
    std::string const cottageReport_
        = demo::reportBody({ 4'812'000'000, 391'000'000, 0, 0, 4'812'000'000, 391'000'000 });
    TemporaryFolder folder_;
    demo::CertificateFiles certificate_ = *demo::makeCertificate(folder_.path() / "certificate");
    std::unique_ptr<demo::Provider> provider_ = demo::Provider::start(certificate_);
    QProcess screen_;
    ProgramUnderTest program_;
};
