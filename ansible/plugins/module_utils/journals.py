# Copyright: the ZOLEX developers
"""What stands in the folder of certificates: plans, journals of runs, certificates.

Files of that folder are read with bounds, and one that cannot be read is as if it were not there:
zolexctl itself judges what a run is gone on with.
"""

from __future__ import absolute_import, division, print_function
__metaclass__ = type

import json
import os
import stat

# What reading a file raises that is of no run.
STRANGE = (EnvironmentError, ValueError, RuntimeError)
JOURNAL_ENDING = '.journal.jsonl'
CERTIFICATE_ENDING = '.certificate.json'
MOST_DOCUMENT = 64 * 1024 * 1024
# The end of a journal: a line has at most 64 KB of a utility's output, which JSON makes longer.
MOST_LINE = 1024 * 1024


def part_of(document, *names):
    """What stands there below these names, or None: any file may lie in the folder."""
    for name in names:
        document = document.get(name) if isinstance(document, dict) else None
    return document


def identity_of(document):
    """The hash of the machine that a document is of."""
    return part_of(document, 'fingerprint', 'identity', 'sha256')


def read_document(name):
    """The JSON object of a file, or {}."""
    try:
        with open(name, 'rb') as stream:
            text = stream.read(MOST_DOCUMENT + 1)
        if len(text) > MOST_DOCUMENT:
            return {}
        document = json.loads(text.decode('utf-8', 'replace'))
    except STRANGE:
        return {}
    return document if isinstance(document, dict) else {}


def newest_first(folder, ending):
    """The files of this ending."""
    try:
        names = [os.path.join(folder, name) for name in os.listdir(folder) if name.endswith(ending)]
    except EnvironmentError:
        return []

    aged = []
    for name in names:
        try:
            about = os.stat(name)
        except EnvironmentError:
            continue
        # A pipe would be waited for.
        if stat.S_ISREG(about.st_mode):
            aged.append((about.st_mtime_ns, name))
    return [name for age, name in sorted(aged, reverse=True)]


def event_of(line):
    """The event of a journal's line, or {}."""
    try:
        event = json.loads(line.decode('utf-8', 'replace'))
    except STRANGE:
        return {}
    return event if isinstance(event, dict) else {}


class Journal:
    """The first and the last event of a run, and its plan where it can be read."""

    def __init__(self, name):
        self.name = name
        self.planned = {}
        self.begin = self.end = {}
        try:
            with open(name, 'rb') as stream:
                self.begin = event_of(stream.readline(MOST_DOCUMENT))
                stream.seek(max(0, os.fstat(stream.fileno()).st_size - MOST_LINE))
                # A line that is not whole was not written.
                lines = stream.read().rpartition(b'\n')[0].splitlines()
                self.end = event_of(lines[-1]) if lines else {}
        except EnvironmentError:
            pass

    def machine(self):
        return identity_of(self.begin) if self.begin.get('event') == 'begin' else None

    def is_open(self):
        """Whether there is something to go on with."""
        return self.end.get('event') != 'end' or self.end.get('exit_code') not in (0, 5)

    def read_plan(self):
        text, named = self.begin.get('plan_text'), self.begin.get('plan_file')
        if text and isinstance(text, str):
            self.planned = event_of(text.encode('utf-8', 'replace'))
        elif named and isinstance(named, str):
            beside = os.path.join(os.path.dirname(self.name), os.path.basename(named))
            self.planned = read_document(named) or read_document(beside)

    def has_removals(self):
        """Whether a step that removes something is still to be taken, or may be."""
        done = set()
        with open(self.name, 'rb') as stream:
            for line in stream.read(MOST_DOCUMENT).splitlines():
                event = event_of(line)
                if event.get('event') == 'step-found-done' or (
                        event.get('event') == 'step-ended' and event.get('accepted') is True):
                    done.add(event.get('step'))
        return any('delete' in step['actions'] and step['step'] not in done
                   for step in self.planned['steps'])

    def is_rebuild(self):
        """Whether everything was to be made anew."""
        words = part_of(self.planned, 'tool', 'argv') or []
        return ('--strategy', 'rebuild') in zip(words, words[1:])


def open_journal(folder, plan):
    """The journal of this machine's last run when it has not ended, and was made by the same
    policies: by others, a new plan from what stands there is what is wanted."""
    machine = identity_of(plan)
    for name in newest_first(folder, JOURNAL_ENDING) if machine else []:
        journal = Journal(name)
        if journal.machine() != machine:
            continue
        if not journal.is_open():
            return None
        journal.read_plan()
        policies = part_of(journal.planned, 'policies', 'sha256')
        return journal if policies and policies == plan['policies']['sha256'] else None
    return None


def certificate_of(folder, plan):
    """The newest certificate of this machine, or None."""
    machine = identity_of(plan)
    for name in newest_first(folder, CERTIFICATE_ENDING) if machine else []:
        if identity_of(read_document(name)) == machine:
            return name
    return None


def free_name(folder, plan_id):
    """The name, without an ending, of a run's files that are not there yet."""
    number = 1
    while True:
        name = os.path.join(folder, plan_id + ('' if number == 1 else '-%d' % number))
        if not any(os.path.lexists(name + ending) for ending in ('.json', JOURNAL_ENDING)):
            return name
        number += 1
