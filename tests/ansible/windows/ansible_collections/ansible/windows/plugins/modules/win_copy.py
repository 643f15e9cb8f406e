"""Stands in the place of the module of this name for Windows: the options of it that the role uses."""

import shutil

from ansible.module_utils.basic import AnsibleModule


def main():
    module = AnsibleModule(argument_spec=dict(
        src=dict(type='path', required=True), dest=dict(type='path', required=True),
        remote_src=dict(type='bool', required=True)), supports_check_mode=True)
    if not module.check_mode:
        shutil.copyfile(module.params['src'], module.params['dest'])
    module.exit_json(changed=True)


if __name__ == '__main__':
    main()
