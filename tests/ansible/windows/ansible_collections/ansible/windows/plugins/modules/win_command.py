"""Stands in the place of the module of this name for Windows: the options of it that the role uses."""

import os
import subprocess

from ansible.module_utils.basic import AnsibleModule


def main():
    module = AnsibleModule(argument_spec=dict(
        argv=dict(type='list', elements='str', required=True), stdin=dict(type='str'),
        chdir=dict(type='path')), supports_check_mode=True)
    if module.check_mode:
        module.exit_json(changed=False, skipped=True, msg='skipped, running in check mode')
    argv, folder = module.params['argv'], module.params['chdir']
    if not os.path.exists(argv[0]):
        module.fail_json(msg='Cannot find the program %s' % argv[0], rc=2)
    run = subprocess.run(argv, input=(module.params['stdin'] or '').encode(), cwd=folder,
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    module.exit_json(changed=True, rc=run.returncode, stdout=run.stdout.decode(), stderr=run.stderr.decode())


if __name__ == '__main__':
    main()
