// SPDX-License-Identifier: MIT
#include "demo/Certificate.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509v3.h>

#include <cstdio>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace demo {

namespace {

template <auto free> struct Freer {
    template <typename T> void operator()(T* object) const { free(object); }
};

using Certificate = std::unique_ptr<X509, Freer<X509_free>>;
using Extension = std::unique_ptr<X509_EXTENSION, Freer<X509_EXTENSION_free>>;
using File = std::unique_ptr<std::FILE, Freer<std::fclose>>;
using Key = std::unique_ptr<EVP_PKEY, Freer<EVP_PKEY_free>>;

Key makeKey() { return Key { EVP_EC_gen("P-256") }; }

CertificateFiles filesIn(std::filesystem::path const& folder)
{
    return { folder / "authority.pem", folder / "certificate.pem", folder / "private-key.pem" };
}

std::string alternativeNames(CertificateTerms const& terms)
{
    std::string names;
    auto const add = [&names](std::string const& kind, std::string const& name) {
        names += (names.empty() ? "" : ",") + kind + name;
    };
    for (auto const& host : terms.hosts)
        add("DNS:", host);
    for (auto const& address : terms.addresses)
        add("IP:", address);
    return names;
}

bool addExtension(X509* certificate, X509* issuer, int kind, std::string const& value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    Extension const extension { X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()) };
    return extension && X509_add_ext(certificate, extension.get(), -1) == 1;
}

// Browsers reject two certificates with the same issuer and number, and a folder may be renewed, so numbers are random.
bool setSerialNumber(X509* certificate)
{
    std::uint64_t number = 0;
    if (RAND_bytes(reinterpret_cast<unsigned char*>(&number), sizeof number) != 1)
        return false;
    return ASN1_INTEGER_set_uint64(X509_get_serialNumber(certificate), number >> 1U) == 1;
}

bool setName(X509* certificate, std::string const& name)
{
    auto const* const bytes = reinterpret_cast<unsigned char const*>(name.c_str());
    return X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_UTF8, bytes, -1, -1, 0) == 1;
}

Certificate makeDraft(std::string const& name, EVP_PKEY* key, CertificateTerms const& terms)
{
    Certificate draft { X509_new() };
    if (!draft || X509_set_version(draft.get(), X509_VERSION_3) != 1)
        return {};
    X509_gmtime_adj(X509_getm_notBefore(draft.get()), terms.validFrom.count());
    X509_gmtime_adj(X509_getm_notAfter(draft.get()), terms.validUntil.count());
    if (!setSerialNumber(draft.get()) || !setName(draft.get(), name) || X509_set_pubkey(draft.get(), key) != 1)
        return {};
    return draft;
}

bool sign(X509* certificate, X509* issuer, EVP_PKEY* issuerKey)
{
    return X509_set_issuer_name(certificate, X509_get_subject_name(issuer)) == 1
        && addExtension(certificate, issuer, NID_authority_key_identifier, "keyid")
        && X509_sign(certificate, issuerKey, EVP_sha256()) > 0;
}

Certificate makeAuthority(EVP_PKEY* key, CertificateTerms const& terms)
{
    Certificate authority = makeDraft("Usage Meter demo authority", key, terms);
    if (!authority)
        return {};
    X509* const raw = authority.get();
    bool const made = addExtension(raw, raw, NID_basic_constraints, "critical,CA:TRUE,pathlen:0")
        && addExtension(raw, raw, NID_key_usage, "critical,keyCertSign")
        && addExtension(raw, raw, NID_subject_key_identifier, "hash") && sign(raw, raw, key);
    return made ? std::move(authority) : Certificate {};
}

Certificate makeLeaf(EVP_PKEY* key, X509* authority, EVP_PKEY* authorityKey, CertificateTerms const& terms)
{
    Certificate leaf = makeDraft("Usage Meter demo provider", key, terms);
    if (!leaf)
        return {};
    X509* const raw = leaf.get();
    bool const made = addExtension(raw, authority, NID_basic_constraints, "critical,CA:FALSE")
        && addExtension(raw, authority, NID_key_usage, "critical,digitalSignature")
        && addExtension(raw, authority, NID_ext_key_usage, "serverAuth")
        && addExtension(raw, authority, NID_subject_alt_name, alternativeNames(terms))
        && sign(raw, authority, authorityKey);
    return made ? std::move(leaf) : Certificate {};
}

// Creates a file with its final mode, so that others can never read a private key.
File create(std::filesystem::path const& path, mode_t mode)
{
    std::error_code ignored;
    std::filesystem::remove(path, ignored);
    int const descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    return File { descriptor < 0 ? nullptr : ::fdopen(descriptor, "w") };
}

bool write(std::filesystem::path const& path, X509* certificate)
{
    File const file = create(path, 0644);
    return file && PEM_write_X509(file.get(), certificate) == 1 && std::fflush(file.get()) == 0;
}

bool write(std::filesystem::path const& path, EVP_PKEY* key)
{
    File const file = create(path, 0600);
    return file && PEM_write_PrivateKey(file.get(), key, nullptr, nullptr, 0, nullptr, nullptr) == 1
        && std::fflush(file.get()) == 0;
}

bool isInForce(std::filesystem::path const& path)
{
    File const file { std::fopen(path.c_str(), "re") };
    if (!file)
        return false;
    Certificate const certificate { PEM_read_X509(file.get(), nullptr, nullptr, nullptr) };
    return certificate && X509_cmp_current_time(X509_get0_notAfter(certificate.get())) > 0;
}

}

std::optional<CertificateFiles> makeCertificate(std::filesystem::path const& folder, CertificateTerms const& terms)
{
    Key const authorityKey = makeKey();
    Key const key = makeKey();
    if (!authorityKey || !key)
        return {};
    Certificate const authority = makeAuthority(authorityKey.get(), terms);
    Certificate const leaf
        = authority ? makeLeaf(key.get(), authority.get(), authorityKey.get(), terms) : Certificate {};
    if (!leaf)
        return {};

    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    auto const files = filesIn(folder);
    bool const written = write(files.authority, authority.get()) && write(files.certificate, leaf.get())
        && write(files.privateKey, key.get());
    return written ? std::optional { files } : std::nullopt;
}

std::optional<CertificateFiles> ensureCertificate(std::filesystem::path const& folder)
{
    auto const files = filesIn(folder);
    if (isInForce(files.authority) && isInForce(files.certificate) && std::filesystem::exists(files.privateKey))
        return files;
    return makeCertificate(folder);
}

}
