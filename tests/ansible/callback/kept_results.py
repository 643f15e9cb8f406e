"""Keeps what each task gives on each host, as lines of JSON in the file ZOLEX_RESULTS."""

import json
import os

from ansible.plugins.callback import CallbackBase

DOCUMENTATION = r'''
name: kept_results
type: notification
short_description: Keep what each task gives
description: Keeps what each task gives on each host as lines of JSON.
requirements: []
'''


class CallbackModule(CallbackBase):
    CALLBACK_VERSION = 2.0
    CALLBACK_TYPE = 'notification'
    CALLBACK_NAME = 'kept_results'

    def keep(self, result, outcome):
        with open(os.environ['ZOLEX_RESULTS'], 'a') as stream:
            stream.write(json.dumps(dict(host=result._host.get_name(), task=result._task.get_name(),
                                         action=result._task.action, outcome=outcome,
                                         result=result._result), default=str) + '\n')

    def v2_runner_on_ok(self, result):
        self.keep(result, 'ok')

    def v2_runner_on_failed(self, result, ignore_errors=False):
        self.keep(result, 'failed')

    def v2_runner_on_unreachable(self, result):
        self.keep(result, 'unreachable')
