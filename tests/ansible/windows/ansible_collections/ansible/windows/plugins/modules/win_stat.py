"""Stands in the place of the module of this name for Windows: the options of it that the role uses."""

import os

from ansible.module_utils.basic import AnsibleModule


def main():
    module = AnsibleModule(argument_spec=dict(path=dict(type='path', required=True)),
                           supports_check_mode=True)
    module.exit_json(changed=False, stat=dict(exists=os.path.exists(module.params['path'])))


if __name__ == '__main__':
    main()
