"""Stands in the place of the module of this name for Windows: the options of it that the role uses."""

import os

from ansible.module_utils.basic import AnsibleModule


def main():
    module = AnsibleModule(argument_spec=dict(
        path=dict(type='path', required=True), state=dict(choices=['directory', 'absent'])),
        supports_check_mode=True)
    path, wanted = module.params['path'], module.params['state'] == 'directory'
    changed = os.path.exists(path) != wanted
    if changed and not module.check_mode:
        if wanted:
            os.makedirs(path)
        else:
            os.unlink(path)
    module.exit_json(changed=changed)


if __name__ == '__main__':
    main()
