// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace demo {

/// A server's certificate and key, and the authority that its clients trust. All three are PEM files.
struct CertificateFiles {
    std::filesystem::path authority;
    std::filesystem::path certificate;
    std::filesystem::path privateKey;
};

/// The names that a certificate is valid for, and its period of validity relative to now.
struct CertificateTerms {
    std::vector<std::string> hosts { "localhost", "www.localhost" };
    std::vector<std::string> addresses { "127.0.0.1", "::1" };
    std::chrono::seconds validFrom = -std::chrono::hours { 1 };
    std::chrono::seconds validUntil = std::chrono::hours { 24 * 365 * 3 };
};

/// Writes an authority, a server certificate signed by it (RFC 5280) and the server's private key (mode 0600) to the
/// folder, which is created if needed. The authority's own key signs only once and is never written, so that trusting
/// the authority means trusting nothing else. Returns nothing if a file cannot be written.
std::optional<CertificateFiles> makeCertificate(
    std::filesystem::path const& folder, CertificateTerms const& terms = {});

/// Returns the folder's files, after recreating them if one is missing or the certificate has expired.
std::optional<CertificateFiles> ensureCertificate(std::filesystem::path const& folder);

}
