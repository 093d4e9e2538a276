#pragma once

#include <functional>
#include <string>
#include <vector>

/// Median of a set of samples; sorts it.
double Median(std::vector<double>& samples);
/// The sample below which a share of all lies; sorts the set.
double Percentile(std::vector<double>& samples, double share);

/// Lets the whole process, with the threads it starts from now on, run on one core alone.
void PinToOneCore();
/// Resident memory of this process in kilobytes.
double ResidentKilobytes();
/// Processor time of this process in seconds.
double ProcessorSeconds();

/// Measurements that need a fresh process: each prints one line of numbers.
using Measurement = std::function<std::vector<double>()>;
void AddMeasurement(const std::string& name, Measurement measurement);
/// Runs one of them in this process, as the child of InFreshProcess. @return the exit code.
int RunMeasurement(const std::string& name);
/// Runs one of them in a process of its own. @return its numbers.
std::vector<double> InFreshProcess(const std::string& name);
