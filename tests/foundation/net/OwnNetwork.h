#pragma once

/// Runs the program in a network of its own, so that no packet of a test can leave it: namespaces for users, network
/// and mounts, a loopback interface that takes broadcasts and multicasts, and a resolver's file that names 127.0.0.1.
///
/// @return the program's exit code when it ran as a child in there;
/// -1 when this is that child, or the kernel forbids namespaces.
int RunInOwnNetwork(char** arguments);

/// False when the kernel forbids it: tests that need it are skipped then.
bool HasOwnNetwork();
