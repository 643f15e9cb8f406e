#pragma once

#include "companion/execution/Certificate.h"
#include "companion/machine/Fingerprint.h"
#include "companion/machine/Snapshot.h"
#include "companion/support/ExampleSnapshot.h"

#include <string>

/// A certificate for the tests of what is written, shown and compared, made by hand.
namespace zolex::companion::test {

/// The server of exampleSnapshot, whose facts have its drives too.
inline Snapshot certifiedSnapshot() {
    Snapshot snapshot = exampleSnapshot();
    ControllerSnapshot& controller = snapshot.details.front();
    controller.facts.drives.clear();
    for (const MachineDrive& drive : controller.drives) {
        controller.facts.drives.push_back(drive.facts);
    }
    return snapshot;
}

/// The certificate of what stands there.
inline Certificate certificateOf(const Snapshot& snapshot) {
    Certificate certificate;
    certificate.planId = "p-5f1c09ab77e2";
    certificate.planHash = std::string(64, '5');
    certificate.policiesFile = "site.ini";
    certificate.journalFile = "plan.journal.jsonl";
    certificate.journalHash = std::string(64, '6');
    certificate.madeAt = "2026-11-21T21:06:20+00:00";
    certificate.fingerprint = fingerprintOf(snapshot);
    for (const ControllerSnapshot& details : snapshot.details) {
        Certificate::Controller controller;
        controller.number = details.number;
        controller.model = details.model;
        controller.utility = details.utility;
        controller.facts = details.facts;
        controller.layout = capturedLayout(details.facts);
        controller.layoutHash = layoutHash(details.facts);
        certificate.controllers.push_back(controller);
        certificate.results.push_back(
            {details.number, ControllerResult::Result::configured, 0, 0, ""});
    }
    certificate.results.push_back(
        {2, ControllerResult::Result::skipped, 0, 0, "no policy is for it"});
    return certificate;
}

inline Certificate exampleCertificate() {
    return certificateOf(certifiedSnapshot());
}

} // namespace zolex::companion::test
