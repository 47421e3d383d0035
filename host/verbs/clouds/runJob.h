#pragma once

#include "host/session/runClouds.h"
#include "host/verbs/Verb.h"

#include <functional>
#include <string>
#include <vector>

/// @file
/// What the verbs share that work on clouds: their options, and carrying them out.
namespace Zamt::Host {

/// The clouds, and what says where and with which values to work on them.
std::vector<Option> cloudOptions();

/// The places to write clouds to; with "in-place" where they may be written over themselves.
std::vector<Option> outputOptions(bool inPlace);

/// "json" of what a run comes to.
Option outcomesJsonOption();

/// What "run" and "preview" both take.
std::vector<Option> jobOptions();

/// Fills in what `cloudOptions` say beside the clouds. False with a sentence in `problem` when one of them
/// makes no sense.
bool readJob(const Request& request, const Context& context, Job& job, std::string& problem);

/// Gives a job its clouds with the places that `outputOptions` say. What is not `Status::Done` comes with a
/// sentence in `problem`.
Status readOutputs(const Request& request, Job& job, std::string& problem);

/// Hands on what is said of all clouds of a command, which fails if there is an error in it.
std::function<void(Diag)> noticeTo(Answer& answer, const Context& context);

/// Runs a job and adds what it came to to the answer, with a summary.
Answer carryOut(const Job& job, const Context& context, Answer answer);

/// Reads what "run" and "preview" have in common, which `job` gets beside its clouds and its picture, and
/// carries it out.
Answer runJob(const Request& request, Job job, const Context& context);

} // namespace Zamt::Host
