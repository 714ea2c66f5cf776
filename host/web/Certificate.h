#pragma once

#include "web/Soup.h"

/// The certificate in these files, in PEM. Throws Failure (missing).
GRef<GTlsCertificate> certificateOf(const QString &certificateFile, const QString &keyFile);

/// A certificate of this person's own for this machine, made when it is first asked for and kept in
/// the configuration folder, so that a browser that trusts it once goes on doing so. It names
/// `addresses`; where they have changed, a new one is made. Throws Failure.
GRef<GTlsCertificate> ownCertificate(const QStringList &addresses);
