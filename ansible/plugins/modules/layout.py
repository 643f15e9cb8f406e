#!/usr/bin/python
# Copyright: the ZOLEX developers
"""The RAID controllers of a server as policies say."""

from __future__ import absolute_import, division, print_function
__metaclass__ = type

DOCUMENTATION = r'''
module: layout
short_description: Configure the RAID controllers of a server as policies say
version_added: 2.20.0
description:
  - Plans by policies with C(zolexctl plan), and carries the plan out with C(zolexctl apply) where
    something is to be done. What stands already as it is wanted stays.
  - Nothing is lost that was not agreed to. A run in which something would be lost fails with the list
    of it in I(destroys) and with a code in its message, which stands for just these losses on just this
    server. With the code in I(destroy_code) the next run goes through.
  - Check mode plans only and changes nothing, and fails where the run would, so that it is the review
    of a fleet.
  - Plan, journal and certificate of a run are kept in I(certificates). A run of the same policies that
    was interrupted there is gone on with first; see the notes.
options:
  strategy:
    description:
      - C(auto) keeps what stands as it is wanted, and removes the rest.
      - C(add) removes nothing, and fails when that is not enough.
      - C(rebuild) makes all anew.
    type: str
    choices: [auto, add, rebuild]
    default: auto
  destroy:
    description:
      - What may be lost. C(never) is nothing; C(own) is what certificates in I(certificates) tell of
        and nobody has changed since; C(any) is anything, for laboratories; and a code such as
        C(7Q4K-2M9D) is exactly what it stands for.
    type: str
    default: never
  destroy_code:
    description:
      - The code of the losses that are agreed to, beside C(never) or C(own) in I(destroy). It counts only
        where something would be lost.
    type: str
  accept:
    description:
      - Errors of the plan that are let pass, such as C(ZX701). Those of the policies file itself cannot
        be.
    type: list
    elements: str
  allow_skipped:
    description:
      - Whether controllers that no policy fits, or that have no drives, may be left as they are. Otherwise
        the module fails.
    type: bool
    default: false
  certificates:
    description:
      - The folder of plans, journals and certificates. It is made where it is not there, and should be
        on a disk that keeps its files, so that a run can be gone on with after a loss of power.
    type: path
    default: /var/lib/zolex
  strict:
    description:
      - Whether the module fails where all is as planned but not well, because a drive has failed or is
        rebuilding, or a hot spare stands where another drive was planned. C(any) in I(destroy) is refused.
    type: bool
    default: false
attributes:
  check_mode:
    description: Plans, and changes nothing.
    support: full
  diff_mode:
    description: The layouts before and after, one line for each array with its logical drives.
    support: full
  platform:
    description: The systems whose servers can be configured.
    platforms: linux
    support: full
notes:
  - A run that was killed, or lost its power, has left a journal. The next run with the same policies goes
    on with it, as C(zolexctl apply --resume) does, and then plans again. By other policies it is not gone
    on with; the new plan is made from what stands there.
  - As long as such a run has not removed all that it removes, it is gone on with only where that is still
    agreed to, by the code of its losses, C(own) or C(any). Otherwise the module fails with the code.
  - Two runs on one server at the same time are refused by C(zolexctl).
  - C(own) cannot be judged in check mode, in which the message says what would be lost.
extends_documentation_fragment:
  - zolex.raid.zolexctl
  - zolex.raid.zolexctl.machine
  - zolex.raid.zolexctl.policies
seealso:
  - module: zolex.raid.layout_info
  - module: zolex.raid.policies_check
'''

EXAMPLES = r'''
- name: RAID as the site says
  zolex.raid.layout:
    policies: /srv/site.ini

- name: The same by a file beside the playbook, where the loss was agreed to in raid_codes
  zolex.raid.layout:
    policies_content: "{{ lookup('ansible.builtin.file', 'site.ini', rstrip=false) }}"
    destroy_code: "{{ raid_codes[inventory_hostname] | default(omit) }}"

- name: Deploy again what an earlier run has built
  zolex.raid.layout:
    policies: /srv/site.ini
    strategy: rebuild
    destroy: own
    certificates: /var/lib/zolex

- name: Only the first controller
  zolex.raid.layout:
    policies: /srv/site.ini
    controllers: [1]
'''

RETURN = r'''
plan:
  description:
    - The plan, as in the document C(zolex-plan), of which C(plan.schema.json) is the schema. Of a run
      that went on with another, the one made before it went on.
  returned: success
  type: dict
  sample: {"plan_id": "p-b67508be1ede", "steps": []}
controllers:
  description: What became of each controller, or would.
  returned: when a plan was made
  type: list
  elements: dict
  contains:
    number:
      description: Its number.
      returned: always
      type: int
      sample: 1
    model:
      description: Its model.
      returned: always
      type: str
      sample: LSI-MegaRAID-8480
    serial_number:
      description: Its serial number; null where it tells none.
      returned: always
      type: str
      sample: "1122334455"
    policy:
      description: The policy that fits; null where none does.
      returned: always
      type: str
      sample: Policy.web
    strategy:
      description: C(none), C(add) or C(rebuild); null where nothing is planned.
      returned: always
      type: str
      sample: add
    result:
      description:
        - C(configured), C(already), C(skipped) or C(failed); before a run C(planned) or C(refused).
      returned: always
      type: str
      sample: configured
    step:
      description: The step that failed, else null.
      returned: always
      type: int
      sample: 2
    of:
      description: How many steps there are where one has failed, else null.
      returned: always
      type: int
      sample: 3
    reason:
      description: Why it is so; null where there is nothing to say.
      returned: always
      type: str
      sample: as the policy says
destroys:
  description: What would be lost, or was.
  returned: when a plan was made
  type: dict
  contains:
    consent:
      description: The code that agrees to it; null where nothing is lost.
      returned: always
      type: str
      sample: 7Q4K-2M9D
    capacity_bytes:
      description: How much that is.
      returned: always
      type: int
      sample: 218238025728
    items:
      description: Each logical drive, hot spare and foreign drive, as in the plan.
      returned: always
      type: list
      elements: dict
      sample: [{"controller": 1, "kind": "logical_drive", "id": "1", "raid_type": "RAID5"}]
certificate:
  description: The newest certificate of this server in I(certificates), or null.
  returned: when a plan was made
  type: str
  sample: /var/lib/zolex/KQ10Z7V.certificate.json
journal:
  description: The journal of the run, or of the one that would be gone on with; null where there is none.
  returned: when a plan was made
  type: str
  sample: /var/lib/zolex/p-b67508be1ede.journal.jsonl
diagnostics:
  description: Findings of the plan, with their places in the policies.
  returned: when zolexctl was run
  type: list
  elements: dict
  sample: [{"code": "ZX302", "severity": "error", "summary": "drive 2 is in Array.A and in Array.B"}]
zolexctl_rc:
  description: The exit code of the last C(zolexctl).
  returned: when zolexctl was run
  type: int
  sample: 0
msg:
  description:
    - What was done, or would be; of a failure the first error, with its place and what helps.
  returned: always
  type: str
  sample: nothing to do
'''

import os

from ansible.module_utils.basic import AnsibleModule

from ansible_collections.zolex.raid.plugins.module_utils.journals import (
    JOURNAL_ENDING, certificate_of, event_of, free_name, open_journal)
from ansible_collections.zolex.raid.plugins.module_utils.layouts import layout_lines, losses_text
from ansible_collections.zolex.raid.plugins.module_utils.zolexctl import (
    MACHINE_ARGUMENTS, POLICIES_ARGUMENTS, UNKNOWN, Failure, Zolexctl, document_of, error_text,
    finding_text, machine_arguments, policies_of, refusal_text, run_module, unknown_text)

# Why a run cannot be gone on with: what stands there is of no place of it, or its plan is another.
FITS_NOWHERE = ('ZA118', 'ZA116')
WORDS = ('never', 'own', 'any')


class Layout:
    """One task: the machine is planned, gone on with, and configured."""

    def __init__(self, module):
        self.module = module
        self.params = module.params
        if not self.params['certificates']:
            raise Failure('certificates: name a folder, such as /var/lib/zolex')
        self.folder = os.path.abspath(self.params['certificates'])
        self.consent = self._wish()
        self.machine = machine_arguments(self.params)
        self.program = Zolexctl(module)
        self.results = dict(changed=False)
        self.document = None
        self.planning = None
        self.rc = None
        self.has_ended = False

    def _wish(self):
        """What --destroy is given where nothing else is said."""
        word, code = self.params['destroy'], self.params['destroy_code']
        if self.params['strict'] and word == 'any':
            raise Failure('destroy: any is not for strict runs\nhelp: give the code, or leave strict out')
        if code and word not in ('never', 'own'):
            raise Failure('destroy_code stands beside destroy: never or own, not beside %s' % word)
        for each, others in ((code, ''), (word, ', nor never, own or any')):
            if each and not (others and each in WORDS) and len(plain_code(each)) != 8:
                raise Failure('"%s" is no code of losses%s\nhelp: a failed run and one in check mode tell '
                              'the code, such as 7Q4K-2M9D' % (each, others))
        return word or 'never'

    def destroy_argument(self, destroys):
        """What --destroy is given for these losses."""
        code = self.params['destroy_code']
        if code and plain_code(code) == plain_code(destroys['consent'] or ''):
            return destroys['consent']
        return self.consent

    def plan(self, strategy=None):
        """Plans by what stands there now."""
        name, text = policies_of(self.params)
        arguments = [name, '--format', 'json', '--exit-code',
                     '--strategy', strategy or self.params['strategy']]
        if self.params['accept']:
            arguments += ['--accept', ','.join(self.params['accept'])]
        run = self.program.run('plan', arguments + self.machine, text)
        document = document_of(run, 'zolex-plan')
        self.rc = run.rc
        self.document = run.output
        self.planning = run
        self.results.update(zolexctl_rc=run.rc, diagnostics=diagnostics_of(document),
                            controllers=[controller_of(each) for each in document['controllers']],
                            destroys=document['destroys'], journal=None,
                            certificate=certificate_of(self.folder, document))
        if run.rc not in (0, 1) and not document['controllers']:
            self.fail(refusal_text(self.results['diagnostics'], run))
        if run.rc == 0 and document.get('steps'):
            self.fail('zolexctl plan ends with exit code 0, and gives a plan of %d steps\nhelp: use the '
                      'collection and the zolexctl of one release' % len(document['steps']))
        return document

    def fail(self, msg):
        raise Failure(msg, **self.results)

    def judge(self, plan, has_agreed=False):
        """Fails where the plan cannot be carried out, or must not."""
        if self.rc not in (0, 1):
            self.fail(refusal_text(self.results['diagnostics'], self.planning))
        self.warn()
        skipped = [each for each in plan['controllers'] if each['outcome'] == 'skipped']
        if skipped and not self.params['allow_skipped']:
            self.fail('controller %d is skipped: %s\nhelp: give it a policy, name the others with '
                      'controllers, or let it pass with allow_skipped: true'
                      % (skipped[0]['number'], skipped[0]['outcome_reason']))
        wanted = plan['destroys']['consent']
        given = self.destroy_argument(plan['destroys'])
        if not wanted or has_agreed or given in ('own', 'any') or plain_code(given) == plain_code(wanted):
            return
        code = given if given != 'never' else self.params['destroy_code']
        self.fail('%s, and nobody has agreed to it%s\nhelp: to agree to exactly this on this server: '
                  'destroy_code: %s'
                  % (losses_text(plan['destroys']),
                     ': the code %s is for other losses' % code if code else '', wanted))

    def judge_resumed(self, journal):
        """Fails where a run that is gone on with would lose what nobody agrees to any more."""
        if not journal.has_removals():
            return
        destroys = journal.planned['destroys']
        given, wanted = self.destroy_argument(destroys), destroys['consent']
        agreed = ('own', 'any') if self.params['strategy'] != 'add' else ()
        if not wanted or given in agreed or plain_code(given) == plain_code(wanted):
            return
        self.results['destroys'] = destroys
        self.fail('the run of %s was interrupted before all was removed that it removes: %s, and nobody '
                  'agrees to it now\nhelp: to go on with it: destroy_code: %s\nhelp: to plan anew from '
                  'what stands there, move %s away'
                  % (journal.name, losses_text(destroys), wanted, journal.name))

    def warn(self):
        """What somebody should know who sees no more than that all is done."""
        for each in self.results['diagnostics']:
            if each['severity'] == 'warning':
                self.module.warn(finding_text(each))

    def judge_health(self, plan):
        """Fails where all is as planned, and a strict run wants more."""
        for each in plan['controllers'] if self.params['strict'] else []:
            comparison = each.get('comparison') or {}
            told = (comparison.get('health') or []) + (comparison.get('equivalences') or [])
            if each['outcome'] == 'already' and (told or comparison.get('result') == 'equivalent'):
                self.fail('controller %d is as planned, but not well: %s'
                          % (each['number'], '; '.join(told) or 'it is equivalent'))

    def resume(self, journal):
        """Goes on with a run that was interrupted."""
        arguments = ['--resume', journal.name]
        if self.params['utilities']:
            arguments += ['--utilities', self.params['utilities']]
        try:
            self.carry_out(arguments, journal.name, journal.planned)
        except Failure as failure:
            if any('[%s]' % code in failure.msg for code in FITS_NOWHERE):
                failure.msg += '\nhelp: to plan anew from what stands there, move %s away' % journal.name
            raise

    def apply(self, plan):
        """Carries the plan out, which is kept beside its journal and names it."""
        if not os.path.isdir(self.folder):
            try:
                os.makedirs(self.folder, 0o755)
            except EnvironmentError as fault:
                self.fail('%s cannot be made: %s\nhelp: name another folder with certificates'
                          % (self.folder, fault.strerror))
        name = self.keep_plan(plan['plan_id'])
        arguments = [name + '.json', '--journal', name + JOURNAL_ENDING] + self.machine
        if self.params['allow_skipped']:
            arguments.append('--allow-skipped')
        try:
            self.carry_out(arguments, name + JOURNAL_ENDING, plan)
        finally:
            if not os.path.exists(name + JOURNAL_ENDING):
                try:
                    os.unlink(name + '.json')
                except EnvironmentError:
                    pass

    def keep_plan(self, plan_id):
        """Writes the plan; the name of the run's files without an ending."""
        while True:
            name = free_name(self.folder, plan_id)
            try:
                with open(name + '.json', 'xb') as stream:
                    stream.write(self.document.encode('utf-8', 'surrogateescape'))
                    stream.flush()
                    os.fsync(stream.fileno())
                return name
            except FileExistsError:
                # Another run, which has planned the same, was faster.
                continue
            except EnvironmentError as fault:
                self.fail('%s.json cannot be written: %s\nhelp: name another folder with certificates'
                          % (name, fault.strerror))

    def judge_folder(self):
        """Fails in check mode where the folder of certificates cannot be made or written."""
        folder = self.folder
        while not os.path.lexists(folder):
            folder = os.path.dirname(folder)
        if not os.path.isdir(folder) or not os.access(folder, os.W_OK | os.X_OK):
            self.fail('%s cannot be written\nhelp: name another folder with certificates' % self.folder)

    def carry_out(self, arguments, journal, plan):
        arguments += ['--destroy', self.destroy_argument(plan['destroys']),
                      '--certificates', self.folder, '--format', 'json']
        try:
            run = self.program.run('apply', arguments)
        except Failure as failure:
            # Killed, or told to end: what was begun stands in the journal.
            run = failure.results.pop('run', None)
            self.take_events(run.output if run else '', journal)
            self.results['zolexctl_rc'] = failure.results.get('zolexctl_rc')
            self.fail(failure.msg)
        self.results['zolexctl_rc'] = run.rc
        self.take_events(run.output, journal)
        for line in run.error.splitlines():
            if line.startswith('warning: ') or ': warning: ' in line:
                self.module.warn(line)
        if run.rc != 0:
            self.fail(error_text(run.error)
                      or 'zolexctl apply said nothing; its exit code is %d' % run.rc)
        if not self.has_ended:
            self.fail('zolexctl apply ends with exit code 0, and tells no end of a run\nhelp: use the '
                      'collection and the zolexctl of one release')

    def take_events(self, output, journal):
        """What the events of a run say of the controllers, and whether a command was begun."""
        self.results['journal'] = journal if os.path.exists(journal) else None
        self.has_ended = False
        for line in output.splitlines():
            event = event_of(line.encode('utf-8', 'replace'))
            if event.get('event') in ('step-started', 'step-found-done'):
                self.results['changed'] = True
            elif event.get('event') == 'end':
                self.has_ended = event.get('exit_code') == 0
                for result in event.get('results') or []:
                    for each in self.results['controllers']:
                        if each['number'] == result['number']:
                            each.update(result=result['result'], step=result['step'],
                                        of=result['of'], reason=result['reason'])

    def work(self):
        try:
            return self.configure()
        except UNKNOWN as fault:
            self.fail(unknown_text(fault))

    def configure(self):
        plan = self.plan()
        journal = open_journal(self.folder, plan)
        self.results['journal'] = journal.name if journal else None
        if journal:
            self.judge_resumed(journal)
        before, after = layout_lines(plan, 'before'), layout_lines(plan, 'after')
        if self.module.check_mode:
            self.judge(plan, has_agreed=journal is not None)
            if self.rc == 1 and journal is None:
                self.judge_folder()
            self.results['changed'] = self.rc == 1 or journal is not None
            msg = self.outlook(plan, journal)
        elif journal is not None:
            self.resume(journal)
            of_resumed = self.results['controllers']
            # What was made anew is not made anew once more.
            rest = self.plan('auto' if journal.is_rebuild() and self.params['strategy'] == 'rebuild' else None)
            self.results['journal'] = journal.name
            self.judge(rest)
            if self.rc == 1:
                self.apply(rest)
            else:
                self.results.update(controllers=of_resumed, destroys=journal.planned['destroys'])
            self.judge_end(rest)
            msg = 'gone on with the run that was interrupted'
        else:
            self.judge(plan)
            if self.rc == 1:
                self.apply(plan)
            self.judge_end(plan)
            msg = 'configured as planned' if self.results['changed'] else 'nothing to do'
        self.results['certificate'] = certificate_of(self.folder, plan)
        if self.module._diff:
            self.results['diff'] = dict(before_header='layout as it was', after_header='layout as planned',
                                        before=before, after=after)
        return dict(self.results, plan=plan, msg=msg)

    def judge_end(self, plan):
        """A strict run looks at what stands there when all is done."""
        if self.params['strict']:
            changed = self.results['changed']
            kept = {name: self.results[name] for name in ('controllers', 'destroys', 'journal',
                                                          'zolexctl_rc')}
            last = self.plan() if changed else plan
            self.results.update(kept)
            self.judge_health(last)

    def outlook(self, plan, journal):
        if journal is not None:
            return 'the run of %s was interrupted, and would be gone on with' % journal.name
        if self.rc == 0:
            self.judge_health(plan)
            return 'nothing to do'
        steps = len(plan['steps'])
        text = '%d step%s would be taken' % (steps, '' if steps == 1 else 's')
        if plan['destroys']['consent']:
            text += '; ' + losses_text(plan['destroys'])
            if self.destroy_argument(plan['destroys']) == 'own':
                text += ', if certificates in %s tell of it' % self.folder
        return text


def plain_code(text):
    """A code without what is not of it; letters that look like digits are those."""
    return ''.join({'I': '1', 'L': '1', 'O': '0'}.get(each, each)
                   for each in text.upper() if each not in ' -\t')


def diagnostics_of(plan):
    """All findings, those of a controller with its number; each of them once."""
    findings = list(plan['policies']['diagnostics'])
    for each in plan['controllers']:
        findings += [dict(finding, controller=each['number'])
                     for finding in each['diagnostics'] + each['warnings']]
    return findings + [each for each in plan['diagnostics'] if each not in findings]


def controller_of(planned):
    """What stands in controllers before anything was carried out."""
    return dict(number=planned['number'], model=planned['model'],
                serial_number=planned['serial_number'], policy=planned['policy']['name'],
                strategy=(planned.get('strategy') or {}).get('name'), result=planned['outcome'],
                step=None, of=None, reason=planned['outcome_reason'])


def main():
    spec = dict(MACHINE_ARGUMENTS, **POLICIES_ARGUMENTS)
    spec.update(strategy=dict(type='str', choices=['auto', 'add', 'rebuild'], default='auto'),
                destroy=dict(type='str', default='never'), destroy_code=dict(type='str'),
                accept=dict(type='list', elements='str'),
                allow_skipped=dict(type='bool', default=False),
                certificates=dict(type='path', default='/var/lib/zolex'),
                strict=dict(type='bool', default=False))
    run_module(lambda: AnsibleModule(argument_spec=spec, supports_check_mode=True,
                                     mutually_exclusive=[('policies', 'policies_content')],
                                     required_one_of=[('policies', 'policies_content')]),
               lambda module: Layout(module).work())


if __name__ == '__main__':
    main()
