#!/usr/bin/python
# Copyright: the ZOLEX developers
"""Every fault of a policies file."""

from __future__ import absolute_import, division, print_function
__metaclass__ = type

DOCUMENTATION = r'''
module: policies_check
short_description: Find every fault of a policies file
version_added: 2.20.0
description:
  - Runs C(zolexctl check), which reads policies to their end and tells all their faults at once, with
    their places. No server is needed, so it is usually run once, on the host of the playbook.
  - The module fails when there is an error, and with I(strict) when there is a warning.
options:
  machine:
    description:
      - A recording that C(zolexctl record) has made, or a folder of them, to hold the policies against.
    type: path
  select:
    description: Only these rules, such as C(ZX301), or C(ZX5) for a whole group.
    type: list
    elements: str
  ignore:
    description: All but these rules.
    type: list
    elements: str
  strict:
    description: Whether warnings are failures too.
    type: bool
    default: false
attributes:
  check_mode:
    description: Can run in check mode, and does the same there.
    support: full
  diff_mode:
    description: Nothing is changed, so there is nothing to compare.
    support: none
  platform:
    description: The systems on which it runs.
    platforms: linux
    support: full
extends_documentation_fragment:
  - zolex.raid.zolexctl
  - zolex.raid.zolexctl.policies
seealso:
  - module: zolex.raid.layout
'''

EXAMPLES = r'''
- name: The policies are right before a server is touched
  zolex.raid.policies_check:
    policies: site.ini
    machine: recordings/
  delegate_to: localhost
  run_once: true
'''

RETURN = r'''
valid:
  description: Whether there is no error.
  returned: when the policies were read
  type: bool
  sample: true
error_count:
  description: How many errors there are.
  returned: when the policies were read
  type: int
  sample: 0
warning_count:
  description: How many warnings there are.
  returned: when the policies were read
  type: int
  sample: 0
note_count:
  description: How many notes there are.
  returned: when the policies were read
  type: int
  sample: 1
diagnostics:
  description:
    - All findings, as in the document C(zolex-check), of which C(check.schema.json) is the schema.
  returned: when zolexctl was run
  type: list
  elements: dict
  sample: [{"code": "ZX302", "severity": "error", "summary": "drive 2 is in Array.A and in Array.B"}]
zolexctl_rc:
  description: The exit code of C(zolexctl).
  returned: when zolexctl was run
  type: int
  sample: 0
msg:
  description: That nothing was found, or the first error (else warning) with its place and its help.
  returned: always
  type: str
  sample: "/srv/site.ini:5:11: error: drive 2 is in Array.A and in Array.B [ZX302]"
'''

from ansible.module_utils.basic import AnsibleModule

from ansible_collections.zolex.raid.plugins.module_utils.zolexctl import (
    COMMON_ARGUMENTS, POLICIES_ARGUMENTS, Failure, Zolexctl, document_of, findings_text, policies_of,
    refusal_text, run_module)


def arguments_of(params, name):
    arguments = [name, '--format', 'json']
    for option in ('select', 'ignore'):
        if params[option]:
            arguments += ['--' + option, ','.join(params[option])]
    return arguments + (['--machine', params['machine']] if params['machine'] else [])


def work(module):
    name, text = policies_of(module.params)
    run = Zolexctl(module).run('check', arguments_of(module.params, name), text)
    document = document_of(run, 'zolex-check')
    findings = document['diagnostics']
    told = [each for each in findings if each['severity'] != 'note']
    if run.rc not in (0, 1):
        raise Failure(refusal_text(findings, run), zolexctl_rc=run.rc, diagnostics=findings)
    results = dict(changed=False, zolexctl_rc=run.rc, diagnostics=findings,
                   valid=document['valid'], error_count=document['error_count'],
                   warning_count=document['warning_count'], note_count=document['note_count'])
    msg = findings_text(told, 'no errors and no warnings')
    if document['error_count'] or (module.params['strict'] and document['warning_count']):
        raise Failure(msg, **results)
    for each in told:
        module.warn(findings_text([each], ''))
    return dict(results, msg=msg)


def main():
    spec = dict(COMMON_ARGUMENTS, **POLICIES_ARGUMENTS)
    spec.update(machine=dict(type='path'), select=dict(type='list', elements='str'),
                ignore=dict(type='list', elements='str'), strict=dict(type='bool', default=False))
    run_module(lambda: AnsibleModule(argument_spec=spec, supports_check_mode=True,
                                     mutually_exclusive=[('policies', 'policies_content')],
                                     required_one_of=[('policies', 'policies_content')]), work)


if __name__ == '__main__':
    main()
