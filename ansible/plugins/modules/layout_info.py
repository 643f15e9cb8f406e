#!/usr/bin/python
# Copyright: the ZOLEX developers
"""What stands on the RAID controllers of a server."""

from __future__ import absolute_import, division, print_function
__metaclass__ = type

DOCUMENTATION = r'''
module: layout_info
short_description: Tell what stands on the RAID controllers of a server
version_added: 2.20.0
description:
  - Runs C(zolexctl show), which finds the controllers, their drives, arrays, logical drives and hot
    spares. It only reads.
options: {}
attributes:
  check_mode:
    description: Can run in check mode, and does the same there.
    support: full
  diff_mode:
    description: Nothing is changed, so there is nothing to compare.
    support: none
  platform:
    description: The systems whose servers can be asked.
    platforms: linux
    support: full
extends_documentation_fragment:
  - zolex.raid.zolexctl
  - zolex.raid.zolexctl.machine
seealso:
  - module: zolex.raid.layout
'''

EXAMPLES = r'''
- name: What is in this server
  zolex.raid.layout_info:
  register: raid

- name: Drives that will fail soon
  ansible.builtin.debug:
    msg: "{{ item.location }} {{ item.serial_number }}"
  loop: "{{ raid.controllers | map(attribute='drives') | flatten
          | selectattr('predicted_failure_count') }}"
  loop_control:
    label: "{{ item.location }}"
'''

RETURN = r'''
machine_type:
  description: The type of the machine; null where it is not known.
  returned: success
  type: str
  sample: "8837"
serial_number:
  description: The serial number of the machine; null where it is not known.
  returned: success
  type: str
  sample: KQ10Z7V
controllers:
  description:
    - The controllers with their drives and layouts, as in the document C(zolex-machine), of which
      C(machine.schema.json) is the schema. Sizes are bytes; what a utility does not tell is null.
    - Empty where there is no controller.
  returned: success
  type: list
  elements: dict
  sample: [{"number": 1, "model": "LSI-MegaRAID-8480", "drives": [], "layout": {}}]
diagnostics:
  description: What somebody should know of the machine, as in the document.
  returned: success
  type: list
  elements: dict
  sample: []
zolexctl_rc:
  description: The exit code of C(zolexctl).
  returned: when zolexctl was run
  type: int
  sample: 0
msg:
  description: How many controllers there are, or the first error and its help.
  returned: always
  type: str
  sample: 1 controller
'''

from ansible.module_utils.basic import AnsibleModule

from ansible_collections.zolex.raid.plugins.module_utils.zolexctl import (
    MACHINE_ARGUMENTS, Failure, Zolexctl, document_of, machine_arguments, refusal_text, run_module)


def work(module):
    program = Zolexctl(module)
    run = program.run('show', ['--format', 'json'] + machine_arguments(module.params))
    document = document_of(run, 'zolex-machine')
    if run.rc != 0:
        raise Failure(refusal_text(document['diagnostics'], run), zolexctl_rc=run.rc)
    count = len(document['controllers'])
    return dict(changed=False, zolexctl_rc=run.rc,
                msg='%d controller%s' % (count, '' if count == 1 else 's'),
                machine_type=document['machine_type'], serial_number=document['serial_number'],
                controllers=document['controllers'], diagnostics=document['diagnostics'])


def main():
    run_module(lambda: AnsibleModule(argument_spec=dict(MACHINE_ARGUMENTS), supports_check_mode=True), work)


if __name__ == '__main__':
    main()
