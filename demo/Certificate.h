// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace demo {

/// What a server shows, and what its clients trust. All three are PEM files.
struct CertificateFiles {
    std::filesystem::path authority;
    std::filesystem::path certificate;
    std::filesystem::path privateKey;
};

/// For whom a certificate stands, and from when until when, counted from now.
struct CertificateTerms {
    std::vector<std::string> hosts { "localhost", "www.localhost" };
    std::vector<std::string> addresses { "127.0.0.1", "::1" };
    std::chrono::seconds validFrom = -std::chrono::hours { 1 };
    std::chrono::seconds validUntil = std::chrono::hours { 24 * 365 * 3 };
};

/// Writes an authority, a server certificate signed by it (RFC 5280) and that one's private key (mode 0600) into the
/// folder, which is made when missing. The authority's own key signs once and is never written, so trusting the
/// authority trusts nothing else. Nothing when a file cannot be written.
std::optional<CertificateFiles> makeCertificate(
    std::filesystem::path const& folder, CertificateTerms const& terms = {});

/// The folder's files, made anew when one is missing or the certificate has run out.
std::optional<CertificateFiles> ensureCertificate(std::filesystem::path const& folder);

}
