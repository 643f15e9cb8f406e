# Copyright: the ZOLEX developers
"""Running zolexctl, and what it wrote as values and as texts of Ansible.

Python 3.6 and its standard library alone.
"""

from __future__ import absolute_import, division, print_function
__metaclass__ = type

import json
import os
import signal
import subprocess
import sys
import tempfile
import time

from ansible.module_utils.common.text.converters import to_bytes, to_text

# No document of a machine comes near to it.
MOST_OUTPUT = 64 * 1024 * 1024
# How long zolexctl may take to end when its time is over: behind the command at work, at once.
SECONDS_TO_END = (10, 5, 5)
# What reading a document of another form raises.
UNKNOWN = (EnvironmentError, ValueError, KeyError, TypeError, AttributeError, IndexError, RuntimeError)
# Of what stands below an error.
MOST_LINES = 24
STDIN = '<stdin>'

COMMON_ARGUMENTS = dict(
    executable=dict(type='path', default='zolexctl'),
    timeout=dict(type='int', default=1800),
)
MACHINE_ARGUMENTS = dict(
    COMMON_ARGUMENTS,
    utilities=dict(type='path'),
    controllers=dict(type='list', elements='int'),
)
POLICIES_ARGUMENTS = dict(
    policies=dict(type='path'),
    policies_content=dict(type='str'),
)


class Failure(Exception):
    """Why a module fails, and what it returns beside the message."""

    def __init__(self, msg, **results):
        super(Failure, self).__init__(msg)
        self.msg = msg
        self.results = results


class Run:
    """How a run of zolexctl ended."""

    def __init__(self, command, rc, output, error):
        self.command = command
        self.rc = rc
        self.output = output
        self.error = error


class Zolexctl:
    """The program, with a time by which everything has to be done."""

    def __init__(self, module):
        self.module = module
        self.program = self._find(module.params['executable'])
        if module.params['timeout'] < 1:
            raise Failure('timeout: %d is no time; give seconds, such as 1800'
                          % module.params['timeout'])
        self.until = time.monotonic() + module.params['timeout']

    def _find(self, name):
        if os.sep in name:
            if os.path.isfile(name) and os.access(name, os.X_OK):
                return os.path.abspath(name)
            what = 'cannot be started' if os.path.exists(name) else 'is not there'
            raise Failure("%s %s on this host\nhelp: install zolexctl there, or give its place "
                          "with executable" % (name, what))
        found = self.module.get_bin_path(name)
        if not found:
            raise Failure("%s was not found on this host\nhelp: install it, or give its place "
                          "with executable" % name)
        return found

    def run(self, command, arguments, text=None):
        """Runs a command; text is its standard input."""
        argv = [self.program, command] + arguments + ['--color', 'never', '--width', '1000']
        with tempfile.TemporaryFile(dir=self.module.tmpdir) as given, \
                tempfile.TemporaryFile(dir=self.module.tmpdir) as output, \
                tempfile.TemporaryFile(dir=self.module.tmpdir) as error:
            if text is not None:
                given.write(to_bytes(text, errors='surrogate_or_strict'))
                given.seek(0)
            try:
                process = subprocess.Popen([to_bytes(each) for each in argv], stdin=given,
                                           stdout=output, stderr=error, close_fds=True)
            except OSError as fault:
                raise Failure('%s cannot be started: %s' % (self.program, fault.strerror))
            ended = self._wait(process)
            run = Run(command, process.returncode, whole(output, command), whole(error, command))
        # Told to end, it does so behind the command at work, which may have been the last one.
        if not ended and run.rc != 0:
            raise self._too_long(run)
        if run.rc < 0:
            raise Failure('zolexctl %s was ended by signal %d\nhelp: run it again; what was begun '
                          'is gone on with' % (command, -run.rc), zolexctl_rc=run.rc, run=run)
        return run

    def _wait(self, process):
        """False when the time is over. What a utility does is never ended."""
        try:
            process.wait(max(0, self.until - time.monotonic()))
            return True
        except subprocess.TimeoutExpired:
            pass
        for number, seconds in zip((signal.SIGTERM, signal.SIGTERM, signal.SIGKILL),
                                   SECONDS_TO_END):
            process.send_signal(number)
            try:
                process.wait(seconds)
                break
            except subprocess.TimeoutExpired:
                continue
        return False

    def _too_long(self, run):
        return Failure('zolexctl %s was not done within %d seconds, and was told to end\n'
                       'help: a utility that was started works on; run it again, with a larger '
                       'timeout; what was begun is gone on with'
                       % (run.command, self.module.params['timeout']),
                       zolexctl_rc=run.rc, run=run)


def whole(stream, command):
    """What was written to a file, as a text."""
    size = os.fstat(stream.fileno()).st_size
    if size > MOST_OUTPUT:
        raise Failure('zolexctl %s wrote %d bytes, which is no document' % (command, size))
    stream.seek(0)
    return to_text(stream.read(), errors='surrogate_or_replace')


def document_of(run, name):
    """The document of this format that a run has written."""
    try:
        document = json.loads(run.output)
    except ValueError:
        document = None
    if not isinstance(document, dict):
        msg = error_text(run.error)
        raise Failure(msg or 'zolexctl %s wrote no JSON; its exit code is %d'
                      % (run.command, run.rc), zolexctl_rc=run.rc)
    check_format(document, name, 'zolexctl')
    return document


def check_format(document, name, origin):
    """Another major version has another meaning."""
    version = str(document.get('format_version'))
    if document.get('format') != name or version.split('.')[0] != '1':
        raise Failure('%s gives %s %s, and %s 1 is known here\nhelp: use the collection and the '
                      'zolexctl of one release' % (origin, document.get('format'), version, name))


def machine_arguments(params):
    """The options that say which controllers of a machine are meant."""
    arguments = []
    if params['utilities']:
        arguments += ['--utilities', params['utilities']]
    numbers = params['controllers']
    if numbers is not None:
        if not numbers or min(numbers) < 1:
            raise Failure('controllers: give their numbers, from 1 on, or leave it out for all')
        arguments += ['--controller', ','.join(str(number) for number in numbers)]
    return arguments


def policies_of(params):
    """The name by which zolexctl reads the policies, and its standard input."""
    if params['policies_content'] is not None:
        return '-', params['policies_content']
    return os.path.abspath(params['policies']), None


def error_text(text):
    """The first error of what stands on standard error, with what stands below it."""
    lines = text.splitlines()
    first = [i for i, line in enumerate(lines) if line.startswith('error: ') or ': error: ' in line]
    if not first:
        return next((line.strip() for line in lines if line.strip()), '')
    result = [lines[first[0]]]
    for line in lines[first[0] + 1:first[0] + 1 + MOST_LINES]:
        if not line.startswith(' '):
            break
        result.append(line.strip())
    return '\n'.join(result)


def finding_text(finding):
    """A finding as zolexctl writes it: where, what, and what helps."""
    place = ''
    where = finding.get('range') or {}
    if where.get('filename'):
        name = where['filename']
        place = 'policies_content' if name == STDIN else name
        start = where.get('start')
        if start:
            place += ':%d:%d' % (start['line'], start['column'])
        place += ': '
    elif finding.get('controller'):
        place = 'controller %d: ' % finding['controller']
    lines = ['%s%s: %s [%s]' % (place, finding['severity'], finding['summary'], finding['code'])]
    return '\n'.join(lines + ['help: ' + each for each in finding.get('help') or []])


def findings_text(findings, otherwise):
    """The first error, and how many more there are."""
    errors = [each for each in findings if each['severity'] == 'error'] or findings
    if not errors:
        return otherwise
    more = len(errors) - 1
    return finding_text(errors[0]) + ('\nand %d more in diagnostics' % more if more else '')


def refusal_text(findings, run):
    """Why a document stands for nothing that can be used: its first error, else what was said."""
    errors = [each for each in findings if each['severity'] == 'error']
    return findings_text(errors, error_text(run.error) or 'zolexctl %s ends with exit code %d'
                         % (run.command, run.rc))


def unknown_text(fault):
    """What is said of a document that is another than its schema says, or of a system that fails."""
    return ('zolexctl, or a file of a run, gives what is not known here: %s: %s\nhelp: use the collection and '
            'the zolexctl of one release' % (type(fault).__name__, fault))


def run_module(make, work):
    """Makes the module, and ends it with what the work returns, or with why it could not be done."""
    try:
        module = make()
    except UnicodeError:
        # Options go to the log of the system, which takes no bytes of another encoding.
        print(json.dumps(dict(failed=True, msg='policies_content, or another option, is no text of UTF-8\n'
                                               'help: save the policies as plain text: ASCII, or UTF-8')))
        sys.exit(1)
    try:
        results = work(module)
    except Failure as failure:
        failure.results.pop('run', None)
        module.fail_json(msg=failure.msg, **failure.results)
    except UNKNOWN as fault:
        module.fail_json(msg=unknown_text(fault))
    except KeyboardInterrupt:
        module.fail_json(msg='interrupted\nhelp: run it again; what was begun is gone on with')
    module.exit_json(**results)
